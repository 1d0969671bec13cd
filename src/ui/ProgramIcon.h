#pragma once

#include <QIcon>

/// The program's own picture, also that of its windows from the first call on: it is decoded then.
QIcon programIcon();
