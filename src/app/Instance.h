#pragma once

#include "platform/system/FileLock.h"

#include <QLocalServer>
#include <QString>

#include <filesystem>
#include <memory>
#include <system_error>

class QWidget;

/// One program on one application folder: the first holds it, later ones bring its window to the front.
class Instance
{
public:
    enum class Start {
        First,    ///< the folder is held until this object goes
        Raised,   ///< another one holds it, and shows its window now
        Silent,   ///< somebody holds it, and does not answer
        Updating, ///< an updater holds it, which starts the program when it is done
        Unusable, ///< the folder cannot be held; `fault` says why
    };

    /// @param folder  absolute
    explicit Instance(const std::filesystem::path& folder);

    Start begin();
    std::error_code fault() const { return m_fault; }
    /// From here on a later start brings this window to the front, once it is shown.
    /// @param window  outlives this, or its events
    void show(QWidget& window);

private:
    bool take();
    bool isUpdatersTurn() const;
    bool raiseOther() const;

    std::filesystem::path m_folder;
    QString m_name; ///< of the local socket
    std::error_code m_fault;
    std::unique_ptr<FileLock> m_lock;
    QLocalServer m_server;
};
