#pragma once

/// What can be locked while a reply is handled: the frame and its tab strips.
class LockableInterface
{
public:
    virtual ~LockableInterface() = default;

    virtual void lockInterface() = 0;
    /// Makes the frame and the tab strips usable again, whoever disabled them.
    virtual void unlockInterface() = 0;
};

/// Locks the interface for as long as it lives, so that it is unlocked on every way out.
class InterfaceLock
{
public:
    explicit InterfaceLock(LockableInterface& interface) : m_interface(interface) { m_interface.lockInterface(); }
    InterfaceLock(const InterfaceLock&) = delete;
    InterfaceLock& operator=(const InterfaceLock&) = delete;
    ~InterfaceLock() { m_interface.unlockInterface(); }

private:
    LockableInterface& m_interface;
};
