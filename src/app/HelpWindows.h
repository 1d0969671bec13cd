#pragma once

#include <filesystem>
#include <memory>

class QString;
class qrvrcHelpViewer;

/// The window in which help files are read: one of its own, or one below a modal window, which alone can be used then.
class HelpWindows
{
public:
    HelpWindows();
    ~HelpWindows();

    void showTopic(const std::filesystem::path& file, const QString& topic);
    /// Opens a help file at its beginning, in the system's viewer where it has one.
    void openManual(const std::filesystem::path& file);
    void close();

private:
    std::unique_ptr<qrvrcHelpViewer> m_viewer;
};
