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

    /// Makes the application folder the current one and tests its components. There is a window only when that takes a
    /// while or something is wrong; returns when the user is done with it.
    /// @param parent  of the window
    /// @return false when the program is to end instead of going on
    bool run(QWidget* parent);

    /// How long the tests may take before there is a window.
    std::chrono::milliseconds showsAfter{300};

private:
    bool testAll(const std::vector<std::string>& entries, qrvrcDllProgress& window) const;
    ComponentFault faultOf(const std::string& entry) const;

    Client& m_client;
    ComponentServices m_services;
    ProblemFiles& m_problems;
};
