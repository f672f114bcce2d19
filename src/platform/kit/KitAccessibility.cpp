#include "KitAccessibility.h"

#include "Button.h"
#include "ImageView.h"
#include "Label.h"
#include "RefreshControl.h"
#include "TableView.h"
#include "TableViewCell.h"
#include "TextView.h"
#include "ViewSupport.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPlainTextEdit>

#include <algorithm>
#include <utility>

namespace {

// Between the texts of one row's labels, so that a reader pauses between them.
const QString kRowTextSeparator = QStringLiteral(", ");

QString accessibleName(QWidget *view)
{
    const QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(view);
    return iface ? iface->text(QAccessible::Name) : QString();
}

// Whether a tap could reach the view: it is enabled, and it and every view holding it take
// touches. Assistive tools may act only on what a finger could.
bool takesTouches(const QWidget *view)
{
    if (!view->isEnabled())
        return false;
    for (const QWidget *holder = view; holder; holder = holder->parentWidget()) {
        if (!ViewSupport::isUserInteractionEnabled(holder))
            return false;
    }
    return true;
}

// A kit view named by what it shows, unless the app gave it an accessibility label (Qt's
// accessible name, which the base class answers with). Main thread.
class ShownTextAccessible : public QAccessibleWidget
{
public:
    using QAccessibleWidget::QAccessibleWidget;

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Name && widget()->accessibleName().isEmpty())
            return shownText();
        return QAccessibleWidget::text(kind);
    }

protected:
    virtual QString shownText() const = 0;
};

// A control acted on with one gesture, offered to assistive tools as one action that does
// what the gesture does. Main thread.
class ActionAccessible : public ShownTextAccessible
{
public:
    ActionAccessible(QWidget *view, QAccessible::Role role, const QString &action)
        : ShownTextAccessible(view, role), m_action(action)
    {
    }

    QStringList actionNames() const override { return canAct() ? QStringList{m_action} : QStringList{}; }

    void doAction(const QString &action) override
    {
        // Like a finger, the action needs the control on screen.
        if (action == m_action && canAct() && widget()->isVisible())
            act();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = ShownTextAccessible::state();
        state.disabled = !takesTouches(widget());
        return state;
    }

protected:
    virtual bool canAct() const { return takesTouches(widget()); }
    virtual void act() = 0;

private:
    QString m_action;
};

// Main thread.
class ButtonAccessible : public ActionAccessible
{
public:
    explicit ButtonAccessible(Button *button) : ActionAccessible(button, QAccessible::Button, pressAction()) {}

protected:
    QString shownText() const override { return button()->title(); }
    void act() override { emit button()->touchUpInside(); }

private:
    Button *button() const { return static_cast<Button *>(widget()); }
};

// Main thread.
class LabelAccessible : public ShownTextAccessible
{
public:
    explicit LabelAccessible(Label *label) : ShownTextAccessible(label, QAccessible::StaticText) {}

protected:
    QString shownText() const override { return static_cast<Label *>(widget())->text(); }
};

// Pressing begins refreshing, which a reader's user could not do by pulling. Main thread.
class RefreshControlAccessible : public ActionAccessible
{
public:
    explicit RefreshControlAccessible(RefreshControl *control)
        : ActionAccessible(control, QAccessible::Button, pressAction())
    {
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = ActionAccessible::state();
        state.busy = control()->isRefreshing();
        return state;
    }

protected:
    QString shownText() const override { return control()->stateText(); }
    void act() override { control()->beginRefreshing(); }

private:
    RefreshControl *control() const { return static_cast<RefreshControl *>(widget()); }
};

// A row reads as the texts of its visible labels, top to bottom and left to right, whatever
// order they were added in. Main thread.
class CellAccessible : public ShownTextAccessible
{
public:
    explicit CellAccessible(TableViewCell *cell) : ShownTextAccessible(cell, QAccessible::ListItem) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = ShownTextAccessible::state();
        state.selected = static_cast<TableViewCell *>(widget())->isSelected();
        return state;
    }

protected:
    QString shownText() const override
    {
        QWidget *cell = widget();
        QList<Label *> labels = cell->findChildren<Label *>();
        labels.removeIf([cell](const Label *label) { return !label->isVisibleTo(cell); });
        const auto readingKey = [cell](const Label *label) {
            const QPoint at = label->mapTo(cell, QPoint(0, 0));
            return std::pair(at.y(), at.x());
        };
        std::stable_sort(labels.begin(), labels.end(),
                         [&](const Label *a, const Label *b) { return readingKey(a) < readingKey(b); });
        QStringList texts;
        for (Label *label : labels) {
            const QString text = accessibleName(label);
            if (!text.isEmpty())
                texts << text;
        }
        return texts.join(kRowTextSeparator);
    }
};

// The text box stands for the Qt editor inside it, which is left out of its children; its
// subviews (a placeholder, say) stay in. Main thread.
class TextViewAccessible : public ActionAccessible
{
public:
    explicit TextViewAccessible(TextView *textView)
        : ActionAccessible(textView, QAccessible::EditableText, setFocusAction())
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return textView()->text();
        return ActionAccessible::text(kind);
    }

    QAccessible::State state() const override
    {
        QAccessible::State state = ActionAccessible::state();
        const bool editable = textView()->isEditable();
        state.focusable = editable;
        state.focused = textView()->isFirstResponder();
        state.editable = editable;
        state.readOnly = !editable;
        state.multiLine = true;
        return state;
    }

    int childCount() const override { return int(subviews().size()); }
    QAccessibleInterface *child(int index) const override
    {
        const QWidgetList views = subviews();
        return index >= 0 && index < views.size() ? QAccessible::queryAccessibleInterface(views.at(index)) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return int(subviews().indexOf(qobject_cast<QWidget *>(child->object())));
    }

protected:
    // Named by the first button or label lying over the text that shows.
    QString shownText() const override
    {
        for (QWidget *view : subviews()) {
            if (!view->isHidden() && (qobject_cast<Button *>(view) || qobject_cast<Label *>(view)))
                return accessibleName(view);
        }
        return {};
    }
    bool canAct() const override { return ActionAccessible::canAct() && textView()->isEditable(); }
    void act() override { textView()->becomeFirstResponder(); }

private:
    TextView *textView() const { return static_cast<TextView *>(widget()); }

    QWidgetList subviews() const
    {
        QWidgetList views;
        for (QObject *child : widget()->children()) {
            auto *view = qobject_cast<QWidget *>(child);
            if (view && !view->isWindow() && view != textView()->inputWidget())
                views << view;
        }
        return views;
    }
};

// A picture reads as its accessibility label, else as the name of the app's picture it shows.
// Main thread.
class ImageViewAccessible : public ShownTextAccessible
{
public:
    explicit ImageViewAccessible(ImageView *imageView) : ShownTextAccessible(imageView, QAccessible::Graphic) {}

protected:
    QString shownText() const override { return static_cast<ImageView *>(widget())->imageName(); }
};

// A table reads as a list of its rows. Main thread.
class TableAccessible : public QAccessibleWidget
{
public:
    explicit TableAccessible(TableView *table) : QAccessibleWidget(table, QAccessible::List) {}
};

template <class KitView, class Accessible>
QAccessibleInterface *make(QObject *object)
{
    auto *view = qobject_cast<KitView *>(object);
    return view ? new Accessible(view) : nullptr;
}

// Qt asks for each class of an object from the most derived up, so a subclass of a kit
// control (a screen's own cell, say) gets its control's interface.
QAccessibleInterface *kitInterface(const QString &className, QObject *object)
{
    using Maker = QAccessibleInterface *(*)(QObject *);
    static const QHash<QString, Maker> makers{
        {QString::fromLatin1(Button::staticMetaObject.className()), &make<Button, ButtonAccessible>},
        {QString::fromLatin1(Label::staticMetaObject.className()), &make<Label, LabelAccessible>},
        {QString::fromLatin1(TextView::staticMetaObject.className()), &make<TextView, TextViewAccessible>},
        {QString::fromLatin1(TableViewCell::staticMetaObject.className()), &make<TableViewCell, CellAccessible>},
        {QString::fromLatin1(RefreshControl::staticMetaObject.className()),
         &make<RefreshControl, RefreshControlAccessible>},
        {QString::fromLatin1(ImageView::staticMetaObject.className()), &make<ImageView, ImageViewAccessible>},
        {QString::fromLatin1(TableView::staticMetaObject.className()), &make<TableView, TableAccessible>},
    };
    const Maker maker = makers.value(className);
    return maker ? maker(object) : nullptr;
}

} // namespace

namespace KitAccessibility {

void install()
{
    // Qt keeps a factory once however often it is installed.
    QAccessible::installFactory(kitInterface);
}

} // namespace KitAccessibility
