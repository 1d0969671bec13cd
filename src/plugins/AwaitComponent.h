#pragma once

#include "platform/components/Component.h"

#include <functional>

/// Begins something that answers through a `Components::Done`, and lets events run until it has; not for reply
/// handlers.
/// @return what is wrong; that it was broken off when the program quits meanwhile
ComponentFault awaitComponent(const std::function<void(Components::Done)>& begin);
