#pragma once

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "link/ReplyAssembler.h"
#include "platform/system/Background.h"
#include "store/AppFolder.h"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What is kept on disk for the profiles of a list: a folder for each, and the pictures of their mods. All of it is
/// done in another thread.
class ProfileFiles
{
public:
    struct Picture
    {
        std::string name;       ///< a plain file name
        std::string_view entry; ///< for `decodePictureBytes`; not empty
    };
    struct Wanted
    {
        std::vector<std::string> folders; ///< ids of profiles, each a plain file name
        std::vector<Picture> pictures;
        ReplyOwner owner; ///< holds the entries
    };
    /// How it went.
    struct Outcome
    {
        bool hasNewPictures = false;
        std::size_t leftOut = 0;           ///< pictures that are not kept
        std::string firstLeftOut;          ///< name of one of them
        std::optional<RuntimeError> fault; ///< the first one
    };

    /// @param told  called with the outcome, from the event loop; of two that follow at once the newer one counts
    ProfileFiles(const AppFolder& folder, const Bounds& bounds, std::function<void(const Outcome&)> told);

    void keep(Wanted wanted);

private:
    /// What lasts from one list to the next. Used by one thread at a time.
    struct Memory;

    static Outcome work(const Wanted& wanted, const AppFolder& folder, const Bounds& bounds, Memory& memory);

    const AppFolder m_folder; ///< copies, because the program may end meanwhile
    const Bounds m_bounds;
    std::function<void(const Outcome&)> m_told;
    std::shared_ptr<Memory> m_memory;
    NewestWork<Outcome> m_work;
};
