// A library on the bare C interface. Its build says what is wrong with it: ABI (its interface version), REGISTRATION
// (what DllRegisterServer does) and CREATION (what making an instance does).
#include "qrvrc_plugin.h"

#include <cstdlib>
#include <stdexcept>

namespace {
const QrvrcHost* attached = nullptr;
} // namespace

int32_t qrvrc_abi_version(void)
{
    return ABI;
}

void qrvrc_attach_host(const QrvrcHost* host)
{
    if (ABI != QRVRC_ABI_VERSION)
        std::abort(); // must not be called
    attached = host;
}

int32_t DllRegisterServer(void)
{
    REGISTRATION;
    return attached->register_class(attached, "bare.clsPlugin");
}

int32_t qrvrc_create_object(const char*, QrvrcObject** object)
{
    *object = nullptr;
    CREATION;
    return 0;
}
