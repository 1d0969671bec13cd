#pragma once

#include <QCache>
#include <QStaticText>
#include <QStyledItemDelegate>

class GridModel;

/// Pixels at the right and the lower edge of each cell, which the view paints its lines on.
constexpr int gridLineWidth = 1;

/// `text` as one line: what would break or shift a line becomes a blank.
QString singleLine(QString text);

/// Paints a grid's cells. Texts are laid out once and kept, so that repainting what was shown before costs little.
class GridDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// Forgets all laid-out texts; after a change of the view's font.
    void forgetTexts() { m_texts.clear(); }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Shows the row's own tool tip, the meaning of a picture, or the whole of a text that is cut off.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
    /// The plain text that the tool tip for this cell shows; empty for none.
    QString toolTipText(const QStyleOptionViewItem& option, const QModelIndex& index) const;

private:
    struct TextKey
    {
        QString text;
        int width;
        bool bold;
        bool operator==(const TextKey&) const = default;
        friend size_t qHash(const TextKey& key, size_t seed) { return qHashMulti(seed, key.text, key.width, key.bold); }
    };
    struct LaidOutText
    {
        QStaticText text;
        QSizeF size;
        bool cutOff = false;
    };

    const LaidOutText& laidOut(const QString& text, const QStyleOptionViewItem& option, bool bold) const;

    mutable QCache<TextKey, LaidOutText> m_texts{2048};
};
