#pragma once
// The Qt editor inside a TextView. It applies no edit itself: keys, paste, cut and input
// method commits are turned into (UTF-16 range, replacement) requests to its TextView, which
// asks the delegate. Navigation, selection and copying are left to Qt. Main thread.

#include "Range.h"

#include <QPlainTextEdit>

#include <optional>

class TextView;

class TextViewEditor : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TextViewEditor(TextView *owner);

    Range selectionOrCursor() const;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void insertFromMimeData(const QMimeData *source) override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void focusInEvent(QFocusEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    // The range a backspace (backwards) or forward delete removes: the selection, else one
    // grapheme cluster.
    Range deletionRange(bool backwards) const;

    TextView *m_owner;
    // The selection a composition started on: it stays in the text until the commit replaces it.
    std::optional<Range> m_markedRange;
};
