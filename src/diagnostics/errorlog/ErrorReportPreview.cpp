#include "diagnostics/errorlog/ErrorReportPreview.h"

#include "diagnostics/errorlog/ErrorLogSender.h"
#include "platform/system/CodePage.h"
#include "store/ErrorLogText.h"

#include <QDateTime>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize usualSize(620, 430); // pixels

/// A field of a report as people call it. Fields that are always the same are only in the text as it goes out.
struct FieldName
{
    std::size_t field;
    const char16_t* name;
};

constexpr std::array fieldNames{
    FieldName{0, u"Date"},
    FieldName{1, u"Time"},
    FieldName{2, u"Program"},
    FieldName{3, u"Procedure"},
    FieldName{4, u"Line"},
    FieldName{5, u"Error number"},
    FieldName{6, u"Description"},
    FieldName{7, u"Installation that logged it"},
    FieldName{8, u"It is this installation"},
    FieldName{10, u"System"},
    FieldName{13, u"Sent at"},
};
constexpr std::size_t isOwnField = 8;

} // namespace

ErrorReportPreview::ErrorReportPreview(Contents contents, const CodePage& codePage, QWidget* parent)
    : QDialog(parent),
      m_contents(std::move(contents)),
      m_codePage(codePage)
{
    setObjectName(u"qrvrcReportPreview"_s);
    setWindowTitle(u"Error Reports"_s);
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::ApplicationModal);
    resize(usualSize);
    buildControls();
    showReport(0);
}

void ErrorReportPreview::buildControls()
{
    lblReport = new QLabel;
    lblReport->setObjectName(u"lblReport"_s);
    lblReport->setTextFormat(Qt::PlainText);
    lblReport->setWordWrap(true);
    txtReport = new QPlainTextEdit;
    txtReport->setObjectName(u"txtReport"_s);
    txtReport->setAccessibleName(u"Report"_s);
    txtReport->setReadOnly(true);
    txtReport->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    txtReport->setTabChangesFocus(true);
    auto* buttons = new QHBoxLayout;
    const auto button = [&](const QString& name, const QString& caption) {
        auto* made = new QPushButton(caption);
        made->setObjectName(name);
        buttons->addWidget(made);
        return made;
    };
    cmdPrevious = button(u"cmdPrevious"_s, u"&Previous"_s);
    cmdNext = button(u"cmdNext"_s, u"&Next"_s);
    buttons->addStretch();
    QPushButton* close = button(u"cmdClosePreview"_s, u"&Close"_s);
    connect(cmdPrevious, &QPushButton::clicked, this, [this] { showReport(m_shown - 1); });
    connect(cmdNext, &QPushButton::clicked, this, [this] { showReport(m_shown + 1); });
    connect(close, &QPushButton::clicked, this, &QDialog::close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblReport);
    layout->addWidget(txtReport, 1);
    layout->addLayout(buttons);
    cmdNext->setDefault(true);
}

void ErrorReportPreview::showReport(std::size_t index)
{
    const std::size_t count = m_contents.pieces.size();
    m_shown = index;
    QString title = count == 0
                        ? u"Nothing in the log can be reported."_s
                        : u"Report %1 of %2, as it is sent to %3"_s.arg(index + 1).arg(count).arg(m_contents.page);
    if (m_contents.leftOut > 0)
        title += u"\nText of the log that belongs to no entry is not sent and stays there."_s;
    lblReport->setText(title);
    txtReport->setPlainText(count == 0 ? QString() : textOf(index));
    cmdPrevious->setEnabled(index > 0);
    cmdNext->setEnabled(index + 1 < count);
}

QString ErrorReportPreview::textOf(std::size_t index) const
{
    const std::string& piece = m_contents.pieces[index];
    const std::string sentAt = QDateTime::currentDateTime().toString(u"yyyy-MM-dd hh:mm:ss"_s).toStdString();
    const ErrorReportFields fields = reportFields(readErrorLogBlock(piece), m_contents.identity, sentAt);
    QString text;
    for (const FieldName& known : fieldNames) {
        const std::string& value = fields[known.field];
        text += QString::fromUtf16(known.name) + u": "_s;
        if (known.field == isOwnField)
            text += value == "1" ? u"yes"_s : value == "0" ? u"no"_s : u"not known"_s;
        else
            text += m_codePage.toText(value);
        text += u'\n';
    }
    return text + u"\nThe text as it goes out:\n"_s + m_codePage.toText(reportBody(piece, m_contents.identity, sentAt));
}
