#include "ui/Dialogs.h"

#include "diagnostics/report/TrappedError.h"

#include <QApplication>
#include <QEvent>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextLayout>
#include <QtMath>

using namespace Qt::StringLiterals;

namespace {

// Texts from the host must not push the buttons off the screen.
constexpr qsizetype maxBoxCharacters = 3000;
constexpr qsizetype maxBoxLines = 40;
constexpr int minTextWidth = 260; // pixels
constexpr int maxTextWidth = 560;

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
    return text;
}

/// The text of a box. Words that are wider than the box are broken where they are shown, and copied as they are.
class BoxText : public QPlainTextEdit
{
public:
    explicit BoxText(QWidget* parent) : QPlainTextEdit(parent)
    {
        setObjectName(u"txtMessage"_s);
        setAccessibleName(u"Message"_s);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setFocusPolicy(Qt::ClickFocus); // the keyboard is for the buttons
        setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        setFrameShape(NoFrame);
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        viewport()->setAutoFillBackground(false);
        document()->setDocumentMargin(0);
    }

    /// Shows `text` whole, as wide as it needs to be.
    void fit(const QString& text)
    {
        if (text == toPlainText())
            return;
        setPlainText(text);
        const QFontMetrics metrics(font());
        const QList<QStringView> lines = QStringView(text).split(u'\n');
        int width = minTextWidth;
        for (const QStringView line : lines)
            width = qMax(width, metrics.horizontalAdvance(line.toString()) + metrics.averageCharWidth());
        width = qMin(width, maxTextWidth);
        qreal height = 0;
        for (const QStringView line : lines)
            height += heightOf(line.toString(), width);
        setFixedSize(width, qCeil(height) + 2);
    }

private:
    /// Pixels that a line takes in rows of `width`. The document itself knows only when it has been shown.
    qreal heightOf(const QString& line, int width) const
    {
        QTextLayout rows(line, font());
        rows.setTextOption(document()->defaultTextOption());
        rows.beginLayout();
        qreal height = 0;
        for (QTextLine row = rows.createLine(); row.isValid(); row = rows.createLine()) {
            row.setLineWidth(width);
            height += row.height();
        }
        rows.endLayout();
        return height;
    }
};

class MessageBox : public QMessageBox
{
public:
    MessageBox(const QString& title, const QString& text, StandardButtons buttons, QWidget* parent)
        : QMessageBox(NoIcon, title, {}, buttons, parent)
    {
        setObjectName(u"msgBox"_s);
        setWindowModality(Qt::ApplicationModal);
        setTextFormat(Qt::PlainText);
        // The box's own label cannot break a long word. It holds the text for screen readers and stays out of sight.
        auto* const label = findChild<QLabel*>(u"qt_msgbox_label"_s);
        m_text = new BoxText(this);
        layout()->replaceWidget(label, m_text);
        label->hide();
        showText(boxText(text));
        // Plain buttons whatever the desktop's theme draws on them.
        for (QAbstractButton* button : this->buttons())
            button->setIcon({});
        setEnabled(true);
    }

    void showText(const QString& text)
    {
        m_text->fit(text);
        setText(text); // fits the box too
    }

protected:
    void changeEvent(QEvent* event) override
    {
        QMessageBox::changeEvent(event);
        // The window below is locked around replies, and that reaches its child windows too.
        if (event->type() == QEvent::EnabledChange && !isEnabled())
            setEnabled(true);
    }

private:
    BoxText* m_text = nullptr;
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

QString textOf(const TrappedError& error)
{
    // Cut on its own, so that a long description cannot take the outcome away.
    return boxText(error.text()) + u"\n\n"_s + boxText(error.outcome());
}

/// A button that does not close its box.
QPushButton* addSendButton(MessageBox* box)
{
    QPushButton* const button = box->addButton(u"&Send Report"_s, QMessageBox::ActionRole);
    button->setObjectName(u"cmdSendReport"_s);
    button->disconnect();
    return button;
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

void Dialogs::showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error)
{
    auto* const box = new MessageBox(title, textOf(*error), QMessageBox::Ok, boxParent());
    const BoxGuard guard(box);
    box->setDefaultButton(QMessageBox::Ok);
    QObject::connect(error.get(), &TrappedError::changed, box, [box, error] { box->showText(textOf(*error)); });
    if (error->report() == TrappedError::Report::Offered) {
        QPushButton* const send = addSendButton(box);
        QObject::connect(send, &QPushButton::clicked, box, [send, error] {
            send->setEnabled(false);
            error->sendOffered();
        });
    }
    box->exec();
}

QWidget* Dialogs::boxParent() const
{
    if (QWidget* const modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget* const active = QApplication::activeWindow())
        return active;
    return m_mainWindow;
}
