// "BHD Auto Start": asks the tracker to start a game for a profile, through the client's queue of raw requests.

#include "ForeignFrame.h"
#include "qrvrc_plugin.hpp"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <chrono>
#include <filesystem>
#include <fstream>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace fs = std::filesystem;

namespace {

constexpr auto noticeTime = 5s;

/// Puts a request into the queue folder. It is written elsewhere and moved in, because the client sends whatever it
/// finds there, also half a file.
void queueRequest(const std::string& name, const std::string& text)
{
    const fs::path folder = qrvrc::applicationFolder();
    const fs::path queue = folder / "RCData";
    const fs::path temporary = folder / (name + ".tmp");
    std::error_code fault;
    fs::create_directories(queue, fault);
    std::ofstream file(temporary, std::ios::binary);
    file << text;
    file.close();
    if (file)
        fs::rename(temporary, queue / name, fault);
    if (!file || fault) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        throw qrvrc::Error(70, "the request cannot be written to '" + queue.string() + '\'');
    }
}

/// Says what happens, and goes by itself.
void showNotice(std::int32_t profileId, std::int32_t frame)
{
    QDialog* notice = ForeignFrame(frame).newDialog();
    notice->setObjectName(u"qrvrcBHDGS"_s);
    notice->setWindowTitle(u"BHD Auto Start"_s);
    notice->setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(notice);
    layout->addWidget(new QLabel(u"Starting game for profile %1..."_s.arg(profileId), notice));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, notice);
    layout->addWidget(buttons);
    buttons->button(QDialogButtonBox::Close)->setIcon({});
    notice->setMinimumWidth(300); // for the title
    notice->setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
    QObject::connect(buttons, &QDialogButtonBox::rejected, notice, &QDialog::close);
    QTimer::singleShot(noticeTime, notice, &QDialog::close);
    notice->show();
}

class AutoStart : public qrvrc::Plugin
{
public:
    qrvrc::Data data() const override
    {
        qrvrc::Data data;
        data.name = "BHD Auto Start";
        data.file = "qrvrcBHDGS.dll";
        data.version = "1.0.0.0";
        data.author = "QRVRC";
        data.description = "Starts a game on the host for the profile that is selected in the profile list.";
        data.game = "DFBHD";
        data.hasInterface = true;
        data.minRccVer = "3000";
        return data;
    }

    void LoadInterface(std::int32_t profileId, std::int32_t window, std::vector<std::string>& /*list*/,
                       const std::string& user) override
    {
        // A second start for the same profile replaces one that still waits.
        queueRequest("BHDGS_Start_" + std::to_string(profileId),
                     "Plugin_qrvBHDGS_Start_" + std::to_string(profileId) + '_' + user);
        showNotice(profileId, window);
    }
};

} // namespace

QRVRC_PLUGIN(AutoStart, "qrvrcBHDGS.clsPlugin", "1.0.0.0");
