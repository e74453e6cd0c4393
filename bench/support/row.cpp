// The table of all rows, and the memory of a row's images.
#include "bench/support/row.hpp"

#include <cstring>
#include <utility>

namespace lumcv::bench {

std::byte* Job::allocate(std::size_t bytes)
{
    constexpr std::size_t lineBytes = 64, pageBytes = 4096;
    constexpr std::size_t linesApart = 17;
    const std::size_t offset = blocks_.size() * linesApart * lineBytes % pageBytes;
    const std::size_t total = bytes + offset + pageBytes;
    blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(total));
    std::byte* block = blocks_.back().get();
    std::memset(block, 1, total);
    const std::size_t slack = (pageBytes - reinterpret_cast<std::uintptr_t>(block) % pageBytes) % pageBytes;
    return block + slack + offset;
}

std::vector<Row> joined(std::vector<std::vector<Row>> groups)
{
    std::vector<Row> rows;
    for (std::vector<Row>& group : groups)
        for (Row& row : group)
            rows.push_back(std::move(row));
    return rows;
}

Rows::Rows(std::vector<Row> rows)
{
    for (Row& row : rows)
        all().push_back(std::move(row));
}

std::vector<Row>& Rows::all()
{
    static std::vector<Row> rows;
    return rows;
}

}  // namespace lumcv::bench
