#pragma once

#include "plugins/AwaitComponent.h"

#include <filesystem>

/// Registers a component file. @return what is wrong with it
inline ComponentFault registrationFault(Components& components, const std::filesystem::path& file)
{
    return awaitComponent([&](const Components::Done& done) { components.registerFile(file, done); });
}

inline bool isRegistered(Components& components, const std::filesystem::path& file)
{
    return !registrationFault(components, file);
}

/// Creates an instance as the client does: a class that is new is tried first.
inline ObjectRef createdObject(Components& components, const std::string& progId)
{
    static_cast<void>(awaitComponent([&](const Components::Done& done) { components.tryClass(progId, done); }));
    return components.createObject(progId);
}
