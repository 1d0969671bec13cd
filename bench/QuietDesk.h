#pragma once

#include "app/ShippedFiles.h"
#include "app/qrvrcMain.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/TrappedError.h"

#include <QTemporaryDir>

#include <memory>

/// Nothing that is measured opens a box; one that opens all the same ends the run.
class NoBoxes : public MessageBoxes
{
public:
    void show(const QString& title, const QString& text) override { refuse(title, text); }
    bool confirm(const QString& title, const QString& question) override
    {
        refuse(title, question);
        return false;
    }
    void showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error) override
    {
        refuse(title, error->text());
    }

private:
    static void refuse(const QString& title, const QString& text)
    {
        qFatal("a box opened: %s: %s", qPrintable(title), qPrintable(text));
    }
};

/// The client on a folder that holds the shipped files, shown.
class QuietDesk
{
public:
    /// @param boxes  instead of those that end the run
    explicit QuietDesk(MessageBoxes* boxes = nullptr,
                       const QUrl& makerHost = QUrl(QStringLiteral("http://maker.example")))
    {
        fillAppFolder(AppFolder(folder()), QRVRC_SHIPPED_DIR);
        frame = std::make_unique<qrvrcMain>(
            Setup{.folder = folder(), .makerHost = makerHost, .version = "3.0.1.0", .boxes = boxes ? boxes : &m_boxes});
        if (!frame->MDIFormLoad())
            qFatal("the client does not start");
        frame->show();
    }

    /// One for all desks of a run: the profiles' folders, of which there may be thousands, are made once.
    static std::filesystem::path folder()
    {
        static const QTemporaryDir all;
        return all.path().toStdU16String();
    }

private:
    NoBoxes m_boxes;

public:
    std::unique_ptr<qrvrcMain> frame;
};
