#include "ui/Dialogs.h"

#include <QApplication>
#include <QEvent>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

// Texts from the host must not push the buttons off the screen.
constexpr qsizetype maxBoxCharacters = 3000;
constexpr qsizetype maxBoxLines = 40;
constexpr int minTextWidth = 260;           // pixels
constexpr qsizetype maxWordCharacters = 70; // a box wraps its text between words only

/// `text` with places to break in words that would be wider than the box.
QString withBreaks(const QString& text)
{
    QString result;
    qsizetype word = 0;
    for (const QChar character : text) {
        word = character.isSpace() ? 0 : word + 1;
        if (word > maxWordCharacters && !character.isLowSurrogate()) {
            result += QChar(u'\u200B'); // zero width space
            word = 1;
        }
        result += character;
    }
    return result;
}

/// The lines of `text`, which CR LF, CR or LF separate, as the box wants them.
QString boxText(QString text)
{
    text.replace("\r\n"_L1, "\n"_L1).replace(u'\r', u'\n').replace(QChar::Null, u' ');
    qsizetype end = qMin(text.size(), maxBoxCharacters);
    qsizetype lines = 0;
    for (qsizetype at = text.indexOf(u'\n'); at >= 0 && at < end; at = text.indexOf(u'\n', at + 1)) {
        if (++lines == maxBoxLines)
            end = at;
    }
    if (end < text.size()) {
        text.truncate(end);
        text += u'…';
    }
    return withBreaks(text);
}

class MessageBox : public QMessageBox
{
public:
    MessageBox(const QString& title, const QString& text, StandardButtons buttons, QWidget* parent)
        : QMessageBox(NoIcon, title, {}, buttons, parent)
    {
        setObjectName(u"msgBox"_s);
        setWindowModality(Qt::ApplicationModal);
        setTextFormat(Qt::PlainText);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setText(boxText(text));
        // Wide enough for the title to be read, and plain buttons whatever the desktop's theme draws on them.
        auto* const grid = static_cast<QGridLayout*>(layout());
        grid->addItem(new QSpacerItem(minTextWidth, 0), grid->rowCount(), 0, 1, grid->columnCount());
        for (QAbstractButton* button : this->buttons())
            button->setIcon({});
        setEnabled(true);
    }

protected:
    void changeEvent(QEvent* event) override
    {
        QMessageBox::changeEvent(event);
        // The window below is locked around replies, and that reaches its child windows too.
        if (event->type() == QEvent::EnabledChange && !isEnabled())
            setEnabled(true);
    }
};

/// Deletes a box that its parent may have deleted already.
class BoxGuard
{
public:
    explicit BoxGuard(MessageBox* box) : m_box(box) {}
    BoxGuard(const BoxGuard&) = delete;
    BoxGuard& operator=(const BoxGuard&) = delete;
    ~BoxGuard() { delete m_box.data(); }

private:
    QPointer<MessageBox> m_box;
};

QString withReportLine(const QString& errorText, const QString& line)
{
    // Cut on its own, so that a long description cannot take the outcome away.
    return boxText(errorText) + u"\n\n"_s + line;
}

} // namespace

Dialogs::Dialogs(QWidget* mainWindow) : m_mainWindow(mainWindow) {}

void Dialogs::show(const QString& title, const QString& text)
{
    auto* const box = new MessageBox(title, text, QMessageBox::Ok, boxParent());
    const BoxGuard guard(box);
    box->exec();
}

bool Dialogs::confirm(const QString& title, const QString& question)
{
    auto* const box = new MessageBox(title, question, QMessageBox::Yes | QMessageBox::No, boxParent());
    const BoxGuard guard(box);
    box->setDefaultButton(QMessageBox::No);
    box->setEscapeButton(QMessageBox::No);
    return box->exec() == QMessageBox::Yes;
}

void Dialogs::showTrapped(const QString& title, const QString& errorText, const ReportDelivery& deliver)
{
    auto* const box = new MessageBox(title, {}, QMessageBox::Ok, boxParent());
    const BoxGuard guard(box);
    const QPointer<MessageBox> shown(box);
    box->setText(withReportLine(errorText, u"Sending the error report..."_s));
    box->show();
    deliver([shown, errorText](bool delivered) {
        if (shown)
            shown->setText(
                withReportLine(errorText, delivered ? u"Error Report Sent: Yes"_s : u"Error Report Sent: Failed!"_s));
    });
    // The start of the delivery may have let events run, and the user may have closed the box in them.
    if (shown && shown->isVisible())
        shown->exec();
}

QWidget* Dialogs::boxParent() const
{
    if (QWidget* const modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* const active = QApplication::activeWindow())
        return active;
    return m_mainWindow;
}
