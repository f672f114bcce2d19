#include "TextView.h"

#include "Fonts.h"
#include "KeyboardObserver.h"
#include "TextViewDelegate.h"
#include "TextViewEditor.h"

#include <QClipboard>
#include <QHideEvent>
#include <QGuiApplication>
#include <QScrollBar>

TextView::TextView(QWidget *parent) : View(parent), m_editor(new TextViewEditor(this))
{
    setBackgroundColor(Qt::white);
    setFocusProxy(m_editor);
    setFont(Fonts::systemFontOfSize(Fonts::kTextViewDefaultSize));
}

TextView::TextView(const QRectF &frame, QWidget *parent) : TextView(parent)
{
    setFrame(frame);
}

TextView::~TextView()
{
    KeyboardObserver::shared().inputDidResignFirstResponder(this, false);
}

QString TextView::text() const
{
    return m_editor->toPlainText();
}

void TextView::setText(const QString &text)
{
    m_editor->setPlainText(text);
    m_editor->moveCursor(QTextCursor::End);
}

void TextView::setFont(const QFont &font)
{
    m_editor->setFont(font);
    m_editor->document()->setDefaultFont(font);
}

QFont TextView::font() const
{
    return m_editor->font();
}

void TextView::setTextColor(const QColor &color)
{
    QPalette palette = m_editor->palette();
    palette.setColor(QPalette::Text, color);
    m_editor->setPalette(palette);
}

void TextView::setEditable(bool editable)
{
    m_editable = editable;
    m_editor->setReadOnly(!editable);
    m_editor->setTextInteractionFlags(editable ? Qt::TextEditorInteraction : Qt::TextSelectableByMouse);
}

Range TextView::selectedRange() const
{
    return m_editor->selectionOrCursor();
}

void TextView::setSelectedRange(const Range &range)
{
    const qsizetype length = text().size();
    const qsizetype start = qBound<qsizetype>(0, range.location, length);
    QTextCursor cursor = m_editor->textCursor();
    cursor.setPosition(int(start));
    cursor.setPosition(int(qBound<qsizetype>(start, start + range.length, length)), QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
}

void TextView::insertText(const QString &text)
{
    replaceRange(selectedRange(), text);
}

void TextView::paste()
{
    const QString pasted = QGuiApplication::clipboard()->text();
    if (!pasted.isEmpty())
        insertPasted(pasted);
}

void TextView::insertPasted(const QString &text)
{
    if (m_editable)
        applyChange(selectedRange(), text, false);
}

bool TextView::replaceRange(const Range &range, const QString &replacement)
{
    return applyChange(range, replacement, true);
}

bool TextView::applyChange(const Range &range, const QString &replacement, bool askDelegate)
{
    const qsizetype length = text().size();
    Range clamped{qBound<qsizetype>(0, range.location, length), 0};
    clamped.length = qBound<qsizetype>(0, range.length, length - clamped.location);
    if (askDelegate && m_delegate && !m_delegate->shouldChangeTextInRange(this, clamped, replacement))
        return false;
    // The delegate may have changed the text while deciding.
    const qsizetype lengthNow = text().size();
    const qsizetype start = qMin(clamped.location, lengthNow);
    QTextCursor cursor(m_editor->document());
    cursor.setPosition(int(start));
    cursor.setPosition(int(qMin(start + clamped.length, lengthNow)), QTextCursor::KeepAnchor);
    cursor.insertText(replacement);
    m_editor->setTextCursor(cursor);
    if (m_delegate)
        m_delegate->textViewDidChange(this);
    return true;
}

bool TextView::becomeFirstResponder()
{
    if (isFirstResponder())
        return true;
    if (!m_editable || (m_delegate && !m_delegate->textViewShouldBeginEditing(this)))
        return false;
    KeyboardObserver &keyboard = KeyboardObserver::shared();
    if (auto *previous = qobject_cast<TextView *>(keyboard.firstResponder()))
        previous->resign(true);
    if (window()->isVisible())
        window()->activateWindow();
    m_editor->setFocus(Qt::OtherFocusReason);
    if (m_delegate)
        m_delegate->textViewDidBeginEditing(this);
    keyboard.inputDidBecomeFirstResponder(this);
    return true;
}

bool TextView::resignFirstResponder()
{
    resign(false);
    return true;
}

void TextView::resign(bool handingOver)
{
    if (!isFirstResponder())
        return;
    KeyboardObserver::shared().inputDidResignFirstResponder(this, handingOver);
    m_editor->clearFocus();
    if (m_delegate)
        m_delegate->textViewDidEndEditing(this);
}

bool TextView::isFirstResponder() const
{
    return KeyboardObserver::shared().firstResponder() == this;
}

QPointF TextView::contentOffset() const
{
    return QPointF(m_editor->horizontalScrollBar()->value(), m_editor->verticalScrollBar()->value());
}

void TextView::setContentOffset(const QPointF &offset)
{
    m_editor->horizontalScrollBar()->setValue(int(offset.x()));
    m_editor->verticalScrollBar()->setValue(int(offset.y()));
}

QPlainTextEdit *TextView::inputWidget() const
{
    return m_editor;
}

void TextView::hideEvent(QHideEvent *event)
{
    View::hideEvent(event);
    // A desktop window being minimised is not the screen going away.
    if (!event->spontaneous())
        resignFirstResponder();
}

void TextView::layoutSubviews()
{
    m_editor->setGeometry(rect());
    m_editor->lower();
}
