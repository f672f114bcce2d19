#include "TextViewEditor.h"

#include "TextView.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextBoundaryFinder>

namespace {
bool isNavigationOrCopy(QKeyEvent *event)
{
    if (event->matches(QKeySequence::Copy) || event->matches(QKeySequence::SelectAll))
        return true;
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_Home:
    case Qt::Key_End:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return true;
    default:
        return false;
    }
}

// The platform theme's bindings first; the usual keys also when a headless theme has none.
bool isPaste(QKeyEvent *event)
{
    return event->matches(QKeySequence::Paste) || event->key() == Qt::Key_Paste
        || (event->key() == Qt::Key_V && event->modifiers() == Qt::ControlModifier)
        || (event->key() == Qt::Key_Insert && event->modifiers() == Qt::ShiftModifier);
}

bool isCut(QKeyEvent *event)
{
    return event->matches(QKeySequence::Cut) || event->key() == Qt::Key_Cut
        || (event->key() == Qt::Key_X && event->modifiers() == Qt::ControlModifier)
        || (event->key() == Qt::Key_Delete && event->modifiers() == Qt::ShiftModifier);
}

bool isTypedText(const QString &text)
{
    if (text.isEmpty())
        return false;
    for (QChar c : text) {
        if (c.category() == QChar::Other_Control)
            return false;
    }
    return true;
}
} // namespace

TextViewEditor::TextViewEditor(TextView *owner) : QPlainTextEdit(owner), m_owner(owner)
{
    setFrameShape(QFrame::NoFrame);
    // Only a click (or becomeFirstResponder) gives it focus: a window being activated must
    // not make a text view first responder and raise the keyboard.
    setFocusPolicy(Qt::ClickFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setUndoRedoEnabled(false); // an undo would change the text behind the delegate's back
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    viewport()->setAutoFillBackground(false);
    setStyleSheet(QStringLiteral("QPlainTextEdit { background: transparent; }"));
}

Range TextViewEditor::selectionOrCursor() const
{
    const QTextCursor cursor = textCursor();
    return Range{cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart()};
}

Range TextViewEditor::deletionRange(bool backwards) const
{
    const Range selection = selectionOrCursor();
    if (selection.length > 0)
        return selection;
    // One user-perceived character: an emoji with its variation selector or skin tone goes whole.
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, toPlainText());
    graphemes.setPosition(selection.location);
    const qsizetype other = backwards ? graphemes.toPreviousBoundary() : graphemes.toNextBoundary();
    if (other < 0)
        return Range{selection.location, 0};
    return backwards ? Range{other, selection.location - other} : Range{selection.location, other - selection.location};
}

void TextViewEditor::keyPressEvent(QKeyEvent *event)
{
    if (isNavigationOrCopy(event)) {
        QPlainTextEdit::keyPressEvent(event);
        return;
    }
    event->accept();
    if (!m_owner->isEditable())
        return;
    if (isPaste(event)) {
        m_owner->paste();
    } else if (isCut(event)) {
        if (textCursor().hasSelection()) {
            copy();
            m_owner->replaceRange(selectionOrCursor(), QString());
        }
    } else if (event->key() == Qt::Key_Backspace && event->modifiers() == Qt::NoModifier) {
        m_owner->replaceRange(deletionRange(true), QString());
    } else if (event->key() == Qt::Key_Delete && event->modifiers() == Qt::NoModifier) {
        m_owner->replaceRange(deletionRange(false), QString());
    } else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        m_owner->replaceRange(selectionOrCursor(), QStringLiteral("\n"));
    } else if (isTypedText(event->text())) {
        m_owner->replaceRange(selectionOrCursor(), event->text());
    }
}

void TextViewEditor::inputMethodEvent(QInputMethodEvent *event)
{
    const bool composes = !event->preeditString().isEmpty();
    if (composes && !m_markedRange && textCursor().hasSelection()) {
        // Qt would delete the selection behind the delegate's back as composing starts.
        m_markedRange = selectionOrCursor();
        QTextCursor cursor = textCursor();
        cursor.setPosition(cursor.selectionStart());
        setTextCursor(cursor);
    }
    std::optional<Range> refusedSelection;
    if (m_owner->isEditable() && (!event->commitString().isEmpty() || event->replacementLength() > 0)) {
        Range range = m_markedRange.value_or(selectionOrCursor());
        if (!m_markedRange && range.length == 0 && event->replacementLength() > 0) {
            range.location += event->replacementStart();
            range.length = event->replacementLength();
        }
        if (!m_owner->replaceRange(range, event->commitString()))
            refusedSelection = m_markedRange;
        m_markedRange.reset();
    }
    if (!composes)
        m_markedRange.reset();
    // What is still being composed is shown by Qt; it becomes text only when committed.
    QInputMethodEvent composing(event->preeditString(), event->attributes());
    QPlainTextEdit::inputMethodEvent(&composing);
    // Selected again only now: Qt deletes a selection while it ends a composition.
    if (refusedSelection)
        m_owner->setSelectedRange(*refusedSelection);
    event->accept();
}

bool TextViewEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return source->hasText();
}

void TextViewEditor::insertFromMimeData(const QMimeData *source)
{
    if (m_owner->isEditable() && source->hasText()) {
        m_owner->setSelectedRange(selectionOrCursor());
        m_owner->insertPasted(source->text());
    }
}

void TextViewEditor::focusInEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusInEvent(event);
    if (!m_owner->isFirstResponder() && !m_owner->becomeFirstResponder())
        clearFocus();
}

void TextViewEditor::contextMenuEvent(QContextMenuEvent *event)
{
    // Qt's menu offers undo and delete, which would bypass the delegate.
    event->accept();
}
