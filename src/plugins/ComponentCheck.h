#pragma once

#include "plugins/qrvrcDllProgress.h"

#include <chrono>
#include <string>
#include <vector>

struct Client;
struct ProblemFiles;

/// Tests at start-up, before any plugin is loaded, whether the component files of the program can be used, and lets the
/// user deal with those that cannot.
class ComponentCheck
{
public:
    /// @param client    outlives this
    /// @param problems  takes the files that the user leaves unregistered; outlives this
    ComponentCheck(Client& client, ComponentServices services, ProblemFiles& problems);

    /// Makes the application folder the current one and tests its components, with a window if there are any; returns
    /// when the user is done with it.
    /// @param parent  of the window
    /// @return false when the program is to end instead of going on
    bool run(QWidget* parent);

    /// How long each entry that passed is shown.
    std::chrono::milliseconds pause{50};

private:
    bool testAll(const std::vector<std::string>& entries, qrvrcDllProgress& window) const;
    bool isUsable(const std::string& entry) const;

    Client& m_client;
    ComponentServices m_services;
    ProblemFiles& m_problems;
};
