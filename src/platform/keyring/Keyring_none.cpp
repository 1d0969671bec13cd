#include "platform/keyring/Keyring.h"

std::shared_ptr<Keyring> systemKeyring()
{
    return nullptr;
}
