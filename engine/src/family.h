// Filters that differ by a row of a table.
#pragma once

#include "filter.h"

#include <utility>

namespace engine {

/// Registers a filter for each row of a table: describe(row) is what is known of it, build(row, inputs) makes
/// its image.
template <const auto& rows, auto build, class Describe>
auto registerFamily(Describe describe) {
    auto all = [&]<std::size_t... i>(std::index_sequence<i...>) {
        auto with = [](FilterInfo info, Image (*buildRow)(const Inputs&)) {
            info.build = buildRow;
            return Registrar(std::move(info));
        };
        return std::array{with(describe(rows[i]), [](const Inputs& in) { return build(rows[i], in); })...};
    };
    return all(std::make_index_sequence<std::size(rows)>());
}

} // namespace engine
