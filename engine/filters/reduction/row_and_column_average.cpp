// CIRowAverage, CIColumnAverage: the means of the rows or columns of an area, as a row of pixels.
#include "area_row.h"

namespace engine {

namespace {

/// One pixel for each row, from the lowest upwards.
Image rows(const Inputs& in) {
    return areaRow(in, [](const Inputs&, const IntRect& area) -> AreaRow {
        return {area.height(), 1.0 / area.width(), [](RowSums& sums, int y, const Span& pixels, int n) {
                    for (int c = 0; c < 4; ++c)
                        for (int i = 0; i < n; ++i) sums[y][c] += static_cast<double>(pixels.plane[c][i]);
                }};
    });
}

/// One pixel for each column.
Image columns(const Inputs& in) {
    return areaRow(in, [](const Inputs&, const IntRect& area) -> AreaRow {
        return {area.width(), 1.0 / area.height(), [](RowSums& sums, int, const Span& pixels, int n) {
                    for (int c = 0; c < 4; ++c)
                        for (int i = 0; i < n; ++i) sums[i][c] += static_cast<double>(pixels.plane[c][i]);
                }};
    });
}

FilterInfo info(const char* name, const char* displayName, const char* description, Source source,
                Image (*build)(const Inputs&)) {
    return {name,
            displayName,
            description,
            source,
            "10.5",
            categories("Reduction Video StillImage BuiltIn"),
            {imageInput(), rowExtentInput()},
            build};
}

const Registrar rowAverage{info("CIRowAverage", "Row Average",
                                "Makes a row of pixels with the means of the rows of an area.",
                                publicDefinition("the mean of each row"), rows)};
const Registrar columnAverage{info("CIColumnAverage", "Column Average",
                                   "Makes a row of pixels with the means of the columns of an area.",
                                   publicDefinition("the mean of each column"), columns)};

} // namespace

} // namespace engine
