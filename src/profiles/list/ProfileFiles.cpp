#include "profiles/list/ProfileFiles.h"

#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "profiles/list/ProfilePictures.h"
#include "profiles/list/ProfileRecord.h"
#include "ui/PictureStore.h"

#include <filesystem>
#include <new>
#include <unordered_set>
#include <utility>

struct ProfileFiles::Memory
{
    std::unordered_set<std::string> folders; ///< those that are there
    bool hasNewPictures = false;             ///< which nobody has been told of
};

namespace {

/// A byte is three digits and a separator at most.
constexpr std::size_t longestByte = 4;

void makeFolders(const std::vector<std::string>& ids, const std::filesystem::path& parent, std::size_t most,
                 std::unordered_set<std::string>& made)
{
    for (const std::string& id : ids) {
        if (made.size() == most)
            return;
        if (!made.insert(id).second)
            continue;
        // An id has no letter case, so the folder needs no search among its neighbours, of which there may be
        // thousands.
        const std::filesystem::path folder = parent / pathOfBytes(id);
        std::error_code fault;
        std::filesystem::create_directories(folder, fault);
        if (fault) {
            made.erase(id);
            throwFileError(fault, folder);
        }
    }
}

/// The pictures of mods on disk.
class ModFolder
{
public:
    ModFolder(const AppFolder& folder, const Bounds& bounds)
        : m_folder(folder),
          m_bounds(bounds),
          m_count(folder.fileNames("\\mods").size())
    {}

    enum class End { New, Same, LeftOut };

    /// @throws RuntimeError for what is no list of bytes, and for faults of the disk
    End keep(const ProfileFiles::Picture& picture)
    {
        if (!isImageName(picture.name) || picture.entry.size() > longestByte * m_bounds.modPictureBytes)
            return End::LeftOut;
        const std::string bytes = decodePictureBytes(picture.entry);
        if (bytes.empty())
            return End::Same;
        if (bytes.size() > m_bounds.modPictureBytes || !PictureStore::isPicture(bytes, m_bounds.modPictureSide))
            return End::LeftOut;
        const std::filesystem::path file = m_folder.path("\\mods\\" + picture.name);
        std::error_code missing;
        const std::uintmax_t before = std::filesystem::file_size(file, missing);
        if (missing && m_count >= m_bounds.modPictures)
            return End::LeftOut;
        if (!missing && before == bytes.size() && readBytes(file) == bytes)
            return End::Same;
        writeCacheBytes(file, bytes);
        m_count += missing ? 1 : 0;
        return End::New;
    }

private:
    const AppFolder& m_folder;
    const Bounds& m_bounds;
    std::size_t m_count;
};

} // namespace

ProfileFiles::ProfileFiles(const AppFolder& folder, const Bounds& bounds, std::function<void(const Outcome&)> told)
    : m_folder(folder),
      m_bounds(bounds),
      m_told(std::move(told)),
      m_memory(std::make_shared<Memory>())
{}

void ProfileFiles::keep(Wanted wanted)
{
    m_work.start([wanted = std::move(wanted), folder = m_folder, bounds = m_bounds,
                  memory = m_memory] { return work(wanted, folder, bounds, *memory); },
                 [this](const Outcome& outcome) {
                     Outcome whole = outcome;
                     whole.hasNewPictures = std::exchange(m_memory->hasNewPictures, false);
                     m_told(whole);
                 });
}

ProfileFiles::Outcome ProfileFiles::work(const Wanted& wanted, const AppFolder& folder, const Bounds& bounds,
                                         Memory& memory)
{
    Outcome outcome;
    const auto tried = [&outcome](const auto& step) {
        try {
            step();
        } catch (const RuntimeError& error) {
            if (!outcome.fault)
                outcome.fault = error;
        } catch (const std::bad_alloc&) {
            outcome.fault = RuntimeError(ErrorNumber::OutOfMemory, "files of the profiles");
        }
    };
    tried([&] { folder.makeFolder("\\profiles"); });
    tried([&] { makeFolders(wanted.folders, folder.path("\\profiles"), bounds.profileFolders, memory.folders); });
    if (wanted.pictures.empty())
        return outcome;
    tried([&] { folder.makeFolder("\\mods"); });
    ModFolder mods(folder, bounds);
    for (const Picture& picture : wanted.pictures) {
        tried([&] {
            const ModFolder::End end = mods.keep(picture);
            memory.hasNewPictures = memory.hasNewPictures || end == ModFolder::End::New;
            if (end == ModFolder::End::LeftOut && outcome.leftOut++ == 0)
                outcome.firstLeftOut = picture.name;
        });
    }
    return outcome;
}
