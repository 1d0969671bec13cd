#pragma once

#include <QObject>

#include <filesystem>

class QWidget;
class SupportDesk;
struct Client;
struct SupportTalk;

/// Saves what is shown of the desk's talk as a text file.
class TalkFile : public QObject
{
    Q_OBJECT

public:
    /// @param client  outlives this object, as the desk does
    /// @param window  owner of this object and of the dialogs
    TalkFile(Client& client, SupportDesk& desk, QWidget* window);

    /// Writes the file that the talk was saved to last, or asks for one when there is none.
    void save();
    /// Asks for a file and writes that. The talk is the one of now, whoever logs in before a file is chosen.
    void saveAs();

private:
    void choose(const QString& title);
    void write(SupportTalk& talk, std::filesystem::path file);

    Client& m_client;
    SupportDesk& m_desk;
    QWidget* m_window;
};
