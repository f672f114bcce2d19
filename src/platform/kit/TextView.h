#pragma once
// An editable text box. Setting text in code changes it silently; every user edit and
// insertText() goes through the delegate's should-change (UTF-16 range and replacement) and,
// when applied, did-change. Becoming first responder (by code or by clicking into it) starts
// editing and raises the simulated keyboard; resigning ends editing and lowers it, and so does
// hiding the text view or a view holding it (its screen leaving, say). Subviews
// (such as a placeholder) lie over the text. Main thread.

#include "Range.h"
#include "View.h"

#include <QFont>
#include <QPointF>

class QPlainTextEdit;
class TextViewDelegate;
class TextViewEditor;

class TextView : public View
{
    Q_OBJECT
public:
    explicit TextView(QWidget *parent = nullptr);
    explicit TextView(const QRectF &frame, QWidget *parent = nullptr);
    ~TextView() override;

    void setDelegate(TextViewDelegate *delegate) { m_delegate = delegate; }
    TextViewDelegate *delegate() const { return m_delegate; }

    QString text() const;
    void setText(const QString &text);
    void setFont(const QFont &font);
    QFont font() const;
    void setTextColor(const QColor &color);
    void setEditable(bool editable);
    bool isEditable() const { return m_editable; }

    Range selectedRange() const;
    void setSelectedRange(const Range &range);
    // Types `text` at the selection, through the delegate.
    void insertText(const QString &text);
    // Pastes the clipboard's text at the selection. Pasted (and dropped) text goes in whole
    // and is reported through did-change only, as the phone does: a delegate that limits
    // the length trims pastes there.
    void paste();
    void insertPasted(const QString &text);
    // Offers replacing `range` with `text` to the delegate and applies it when allowed.
    bool replaceRange(const Range &range, const QString &text);

    bool becomeFirstResponder();
    bool resignFirstResponder();
    bool isFirstResponder() const;

    QPointF contentOffset() const;
    void setContentOffset(const QPointF &offset);

    // The Qt widget that receives keys and input method events.
    QPlainTextEdit *inputWidget() const;

protected:
    void layoutSubviews() override;
    void hideEvent(QHideEvent *event) override;

private:
    friend class TextViewEditor;
    bool applyChange(const Range &range, const QString &replacement, bool askDelegate);
    void resign(bool handingOver);

    TextViewEditor *m_editor;
    TextViewDelegate *m_delegate = nullptr;
    bool m_editable = true;
};
