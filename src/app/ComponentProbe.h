#pragma once

#include "platform/components/Component.h"

#include <QString>

#include <chrono>
#include <filesystem>

/// How long a component may take to come into being and to say what it is.
inline constexpr std::chrono::milliseconds componentProbeLimit{10000};

/// Tries components in a process of their own: this program, started with its option for that.
/// @param program            full path of the program
/// @param applicationFolder  what the component is told to be the application folder
/// @return a probe that answers from the event loop; one that takes longer than `limit` is ended and has failed
Components::Probe childProcessProbe(const QString& program, const std::filesystem::path& applicationFolder,
                                    std::chrono::milliseconds limit = componentProbeLimit);

/// The other side: tries `file` and tells by the exit status that it came to its end. Of a plugin everything is read
/// that it says of itself. Makes the application itself.
int runComponentProbe(int argc, char** argv, const std::filesystem::path& applicationFolder,
                      const std::filesystem::path& file, const std::string& progId);

/// Registers a component file of an application folder and tries its class, both in a process of their own first, for
/// whoever installs a plugin. Makes the application itself.
/// @return why it cannot be used; it may have been registered all the same
ComponentFault registerComponent(int argc, char** argv, const std::filesystem::path& applicationFolder,
                                 const std::filesystem::path& file);
