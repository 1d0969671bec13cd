#pragma once

#include "platform/system/CodePage.h"
#include "profiles/viewer/TextCursor.h"

#include <QMimeData>

#include <memory>

/// A part of a text for the clipboard, which becomes characters when somebody wants them. A large part shares the text,
/// a small one has bytes of its own, so that a copied line does not keep a whole log.
class TextPart : public QMimeData
{
public:
    TextPart(const std::shared_ptr<const LinedText>& text, const TextRange& range, const CodePage& codePage);

    QStringList formats() const override;
    bool hasFormat(const QString& type) const override;

protected:
    QVariant retrieveData(const QString& type, QMetaType) const override;

private:
    std::shared_ptr<const std::string> m_bytes;
    TextRange m_range;
    CodePage m_codePage;
};
