#include "LFPAlertView.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

QMessageBox *LFPAlertView::show(const QString &message)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance()))
        return nullptr;
    auto *alert = new QMessageBox;
    alert->setAttribute(Qt::WA_DeleteOnClose);
    alert->setWindowTitle(QCoreApplication::translate("LFPAlertView", "Notification"));
    alert->setText(message);
    alert->addButton(QCoreApplication::translate("LFPAlertView", "OK"), QMessageBox::AcceptRole);
    alert->open();
    return alert;
}
