#include "MainCell.h"

#include "FieldValue.h"
#include "HomeStyle.h"
#include "ImageView.h"
#include "Label.h"
#include "MainView.h"

MainCell::MainCell(const QString &reuseIdentifier, QWidget *parent) : TableViewCell(reuseIdentifier, parent)
{
    contentView()->addSubview(mainView());
}

MainView *MainCell::mainView()
{
    if (!m_mainView)
        m_mainView = new MainView(HomeStyle::kRowFrame);
    return m_mainView;
}

void MainCell::getModel(const ListModel &model)
{
    mainView()->title()->setText(FieldValue::displayText(model.sectionname()));
    mainView()->topic()->setText(FieldValue::describe(model.sectiontopic()) + QStringLiteral("个话题"));
    mainView()->icon()->setImageWithURL(QUrl(FieldValue::displayText(model.sectionico())));
}
