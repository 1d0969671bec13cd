// A plugin on the bare C interface. Its build says what calling a member does: MEMBER, of the plugin or of its data
// (`object` says which), with `result` to be set.
#include "qrvrc_plugin.h"

namespace {

const QrvrcHost* attached = nullptr;

struct Thing : QrvrcObject
{
    bool isData;
};

QrvrcObject* newObject(bool isData = true);

int32_t callMember(QrvrcObject* self, const char*, QrvrcValue* const*, int32_t, QrvrcValue* result)
{
    [[maybe_unused]] const bool object = static_cast<Thing*>(self)->isData;
    static_cast<void>(result);
    MEMBER;
}

void release(QrvrcObject* self)
{
    delete static_cast<Thing*>(self);
}

constexpr QrvrcObjectFunctions functions{sizeof(QrvrcObjectFunctions), &callMember, &release};

QrvrcObject* newObject(bool isData)
{
    return new Thing{{&functions}, isData};
}

} // namespace

int32_t qrvrc_abi_version(void)
{
    return QRVRC_ABI_VERSION;
}

void qrvrc_attach_host(const QrvrcHost* host)
{
    attached = host;
}

int32_t DllRegisterServer(void)
{
    return attached->register_class(attached, "bare.clsPlugin");
}

int32_t qrvrc_create_object(const char*, QrvrcObject** object)
{
    *object = newObject(false);
    return 0;
}
