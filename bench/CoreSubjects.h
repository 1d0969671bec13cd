#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

/// One side of a ratio.
struct CoreSubject
{
    /// "path: side".
    std::string_view name;
    /// Makes all that is not measured and returns what is; that is false when what came out is wrong.
    std::function<bool()> (*prepare)(std::size_t size);
    /// Bytes or players.
    std::vector<std::size_t> sizes;
};

/// All paths of the core that have a reference of their own, with both their sides.
const std::vector<CoreSubject>& coreSubjects();
