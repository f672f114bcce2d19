#pragma once
// One row of a table: a white cell whose content view holds the row's subviews, made once per
// reuse identifier and reused for other rows as the table scrolls (prepareForReuse() runs
// before each reuse). Owned by its table. Main thread.

#include "View.h"

enum class TableViewCellSelectionStyle { None = 0, Blue = 1, Gray = 2, Default = 3 };

class TableViewCell : public View
{
    Q_OBJECT
public:
    explicit TableViewCell(const QString &reuseIdentifier = {}, QWidget *parent = nullptr);

    QString reuseIdentifier() const { return m_reuseIdentifier; }
    View *contentView() const { return m_contentView; }

    void setSelectionStyle(TableViewCellSelectionStyle style) { m_selectionStyle = style; }
    TableViewCellSelectionStyle selectionStyle() const { return m_selectionStyle; }
    virtual void setSelected(bool selected, bool animated = false);
    bool isSelected() const { return m_selected; }

    virtual void prepareForReuse() {}

    // Drawn by the table's separator style: a hairline along the bottom, 15 points in.
    void setSeparatorVisible(bool visible);

protected:
    void layoutSubviews() override;
    void paintEvent(QPaintEvent *event) override;

private:
    QString m_reuseIdentifier;
    View *m_contentView;
    TableViewCellSelectionStyle m_selectionStyle = TableViewCellSelectionStyle::Default;
    bool m_selected = false;
    bool m_separatorVisible = false;
};
