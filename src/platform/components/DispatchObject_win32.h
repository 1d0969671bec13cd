#pragma once

#include "platform/components/Component.h"

#include <windows.h>

#include <oleauto.h>

#include <string>

/// An object of the system as a component, called by name.
/// @param dispatch  one reference of it, which the component owns from now on; not null
/// @param name      what errors call it
ObjectRef adoptDispatch(IDispatch* dispatch, std::string name);
