#pragma once

#include "ui/WorkingWindow.h"

#include <filesystem>
#include <string>

struct Client;

/// The program's version, the game titles that it supports, credits, and licences.
class qrvrcAbout : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param version   four parts
    /// @param licences  folder with the licence texts
    qrvrcAbout(Client& client, const std::string& version, const std::filesystem::path& licences, QWidget* parent);

    QString helpSection() const override { return QStringLiteral("About"); }

private:
    Client& m_client;
};
