// The rendering engine: images as lazy, immutable recipes, and the one function that computes pixels.
//
// Coordinates: y runs upwards and a pixel is a unit square, so pixel (0, 0) covers 0..1 in both directions
// and its centre is (0.5, 0.5). Bitmaps have their rows from top to bottom, as files do; the lower left
// corner of a bitmap image is the origin.
//
// Pixels inside the engine are float, premultiplied, linear light with sRGB's primaries, unbounded.
//
// Building a graph never computes a pixel. Invalid arguments throw std::invalid_argument when the graph is
// built; rendering throws std::bad_alloc when memory is short, and passes on what a row source throws.
#pragma once

#include <color/color.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#define ENGINE_API __attribute__((visibility("default")))

namespace engine {

// ---------------------------------------------------------------------------------------- geometry

struct Point {
    double x = 0, y = 0;
    bool operator==(const Point&) const = default;
};

/// A rectangle by its edges, which may be infinite. Empty when it has no area (or an edge is not a number).
struct ENGINE_API Rect {
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;

    static constexpr double inf = std::numeric_limits<double>::infinity();
    static constexpr Rect infinite() { return {-inf, -inf, inf, inf}; }
    /// From origin and size. A negative size is turned around, as CoreGraphics does; edges beyond
    /// what a 32-bit float holds (the way a host writes its "infinite" rectangle) become infinite.
    static Rect ofSize(double x, double y, double width, double height);

    double width() const { return isEmpty() ? 0 : x1 - x0; }
    double height() const { return isEmpty() ? 0 : y1 - y0; }
    bool isEmpty() const { return !(x0 < x1 && y0 < y1); }
    /// Any edge infinite.
    bool isInfinite() const;
    bool contains(const Rect& other) const;
    Rect intersect(const Rect& other) const;
    /// Smallest rectangle around both.
    Rect unite(const Rect& other) const;
    /// Every edge moved outwards.
    Rect grown(double dx, double dy) const;
    /// Smallest rectangle with whole-numbered edges around this one.
    Rect integral() const;
    bool operator==(const Rect&) const = default;
};

/// x' = a x + c y + tx, y' = b x + d y + ty.
struct ENGINE_API Affine {
    double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

    static Affine scale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
    static Affine translation(double tx, double ty) { return {1, 0, 0, 1, tx, ty}; }
    static Affine rotation(double radians);
    /// This one first, then `next`.
    Affine then(const Affine& next) const;
    /// Empty when it cannot be inverted.
    std::optional<Affine> inverse() const;
    Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
    /// Bounding box of the transformed rectangle.
    Rect apply(const Rect& r) const;
    bool isFinite() const;
    bool operator==(const Affine&) const = default;
};

/// A colour as a caller writes it: straight alpha, sRGB coded.
struct Color {
    double r = 0, g = 0, b = 0, a = 1;
    bool operator==(const Color&) const = default;
};

// ------------------------------------------------------------------------------------------ images

class Node;
/// An image is a shared, immutable recipe. Null means "no image".
using Image = std::shared_ptr<const Node>;

struct Pixels;       // pixels of one tile, see src/tile.h
class Evaluator;     // computes rows of a node for one tile
class RenderContext; // what holds for one whole render
struct IntRect;

/// One step of a recipe.
class ENGINE_API Node : public std::enable_shared_from_this<Node> {
  public:
    virtual ~Node() = default;

    /// Outside of it the image is transparent. May be infinite or empty.
    const Rect& extent() const { return extent_; }
    /// What this step reads, in order.
    const std::vector<Image>& inputs() const { return inputs_; }
    /// The part of input `index` that the pixels of `area` of this image depend on. (The bounding box; an
    /// exact shape as a list of rectangles would be a second function beside this one.)
    virtual Rect regionOfInterest(std::size_t index, const Rect& area) const;
    /// A short name for plans and messages.
    virtual std::string name() const = 0;
    /// Whether the step keeps pixels of its input in a buffer, which ends a pass.
    virtual bool materialises() const { return false; }
    /// Makes the evaluator of the rows inside `area`. Called once per tile, on the tile's thread.
    virtual std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const = 0;

  protected:
    Node(const Rect& extent, std::vector<Image> inputs);

  private:
    Rect extent_;
    std::vector<Image> inputs_;
};

enum class Format {
    ARGB8,  ///< bytes A R G B
    RGBA8,  ///< bytes R G B A
    BGRA8,  ///< bytes B G R A
    RGBA16, ///< 16-bit words R G B A in the machine's byte order
    RGBAf,  ///< floats R G B A
    Gray8,  ///< one byte, no alpha
};

/// Meaning of the alpha sample. With `opaque` the sample is ignored when read and written as full.
enum class Alpha { premultiplied, straight, opaque };

ENGINE_API std::size_t bytesPerPixel(Format format);

/// How pixels lie in memory.
struct PixelLayout {
    int width = 0, height = 0;
    Format format = Format::RGBA8;
    Alpha alpha = Alpha::premultiplied;
    /// Space of the colour components: RGB for the four-sample formats, gray for Gray8. Null: the numbers are
    /// taken as they are, without colour matching.
    color::ColorSpacePtr space = color::ColorSpace::sRGB();
};

/// Pixels produced on demand, a strip of rows at a time: of a file too big to be held as floats, or computed
/// ones. The engine keeps the strips used last and does not ask for those again; it calls from its own
/// threads, but never from two at once for one source.
class ENGINE_API RowSource {
  public:
    virtual ~RowSource() = default;
    virtual const PixelLayout& layout() const = 0;
    /// Writes rows first..first+count-1, counted from the top, tightly packed (width * bytesPerPixel each).
    /// May throw; the render then ends with that exception.
    virtual void readRows(int first, int count, std::uint8_t* out) = 0;
    /// The best number of rows to ask for at once.
    virtual int stripRows() const { return 64; }
};

/// An image of pixels in memory. `owner` keeps them alive (and unchanged) as long as the image lives; row r
/// begins at pixels + r * rowBytes. Throws std::invalid_argument for null pixels, sizes that are not
/// positive, rows shorter than their pixels, or a colour space whose model does not suit the format.
ENGINE_API Image bitmap(const PixelLayout& layout, const void* pixels, std::size_t rowBytes,
                        std::shared_ptr<const void> owner);
/// The same for pixels produced on demand. Throws as bitmap() does.
ENGINE_API Image bitmap(std::shared_ptr<RowSource> rows);
/// One colour everywhere, infinite.
ENGINE_API Image constant(const Color& color);
/// Transparent everywhere, with an empty extent.
ENGINE_API Image empty();

/// Below, a null image gives a null image.

/// Moved, scaled, turned. Sampled bilinearly, after averaging over areas when made smaller than half. Edges
/// of the image are antialiased by their coverage, so a scaled opaque picture stays opaque up to its edge.
/// A chain of transforms is one transform. A singular matrix gives the empty image; one that is not finite
/// throws std::invalid_argument.
ENGINE_API Image transform(const Image& image, const Affine& matrix);
/// Transparent outside of `area`. A pixel stays when its centre is inside.
ENGINE_API Image crop(const Image& image, const Rect& area);
/// The edge pixels continued to infinity. An empty image stays empty.
ENGINE_API Image clampToEdge(const Image& image);
/// What is read outside of an image: nothing, or the nearest pixel of its edge.
enum class Wrap { black, clamp };
/// How a place is read: as the pixel that it lies in, or as a mix of the four pixels around it.
enum class Interpolation { nearest, linear };
/// The image as a sampler reads it: transformed, with one reading per pixel, at the place that the pixel's
/// centre comes from. Unlike transform(), it does not average when the image is made smaller, and linear
/// readings fade out within half a pixel outside of a "black" edge. Clamped, the image is infinite. For
/// matrices see transform().
ENGINE_API Image sampled(const Image& image, const Affine& matrix, Wrap wrap, Interpolation interpolation);
/// Source over.
ENGINE_API Image composite(const Image& above, const Image& below);

// --------------------------------------------------------------------------------------- rendering

/// Memory that a render writes to. Row 0 is the top one.
struct Target {
    PixelLayout layout;
    void* pixels = nullptr;
    std::size_t rowBytes = 0;
};

struct Options {
    /// Blend over what the target holds; otherwise replace it.
    bool blend = false;
    /// Space that filters compute in (its components taken as r, g, b); null for linear sRGB.
    color::ColorSpacePtr working;
    /// False: numbers go from bitmaps to the target as they are, no conversion anywhere.
    bool colorManaged = true;
    /// For callers that distinguish; this engine always computes in software.
    bool software = true;
};

/// Computes the part `source` of the image and writes it to the rectangle `dest` of the target, scaled when
/// their sizes differ. `dest` is in the target's coordinates: y upwards, (0, 0) is its lower left corner.
/// Pixels of the target outside `dest` stay untouched; inside, pixels outside of the image become transparent
/// (or stay, when blending). Throws std::invalid_argument for an invalid target (null pixels, rows shorter
/// than their pixels, a space of the wrong model) and for a `source` or `dest` that is not finite. A null
/// image is empty.
ENGINE_API void render(const Image& image, const Rect& source, const Target& target, const Rect& dest,
                       const Options& options = {});

// ----------------------------------------------------------------------------------------- filters

using Numbers = std::vector<double>;
using Bytes = std::vector<std::uint8_t>;
using Value = std::variant<double, Numbers, Color, Affine, Image, std::string, Bytes>;
using Values = std::map<std::string, Value, std::less<>>;

/// What an input holds. Each kind is one alternative of Value; a colour space is given as the bytes of its
/// ICC profile.
enum class InputKind { number, vector, color, transform, image, text, data, colorSpace };

/// What is known about one input of a filter.
struct InputInfo {
    std::string key;
    std::string displayName;
    InputKind kind = InputKind::number;
    /// What the values mean, in Core Image's words: Scalar, Distance, Angle, Position ...; empty when there
    /// is nothing more to say.
    std::string type;
    std::optional<Value> defaultValue, identity;
    std::optional<double> min, max, sliderMin, sliderMax;
};

struct FilterInfo;

/// The values of a filter's inputs, each falling back to the filter's default.
/// The getters throw std::invalid_argument when a value is of another kind than asked for.
class ENGINE_API Inputs {
  public:
    Inputs(const FilterInfo& filter, const Values& values) : filter_(filter), values_(values) {}

    /// Null when not set.
    Image image(std::string_view key) const;
    /// A value that is not finite counts as not set.
    double number(std::string_view key) const;
    /// `number` limited to low..high.
    double number(std::string_view key, double low, double high) const;
    /// All elements; those that are not finite become 0.
    Numbers vector(std::string_view key) const;
    /// Padded with 0 or cut to `count`.
    Numbers vector(std::string_view key, std::size_t count) const;
    Point point(std::string_view key) const;
    /// From x, y, width, height.
    Rect rect(std::string_view key) const;
    Color color(std::string_view key) const;
    Affine affine(std::string_view key) const;
    std::string string(std::string_view key) const;
    Bytes data(std::string_view key) const;

  private:
    template <class T>
    const T* find(std::string_view key) const;
    const FilterInfo& filter_;
    const Values& values_;
};

/// Where a filter's formula comes from.
struct Source {
    enum class Kind {
        publicDefinition, ///< a published formula, or Core Image's documentation
        fitted,           ///< to pictures that Core Image rendered
        ourOwn,           ///< no picture is known
    };
    Kind kind;
    /// What it is, or what of it stands on something else.
    std::string_view text;
    /// The mean difference from Core Image's picture, of a component in steps of 255, where it was measured.
    std::optional<double> residual = {};
};

/// A filter is data plus one function.
struct ENGINE_API FilterInfo {
    std::string name;
    std::string displayName;
    std::string description;
    Source source;
    /// First system that has it, such as "10.4".
    std::string since;
    /// In Core Image's words: Blur, StillImage ...
    std::vector<std::string> categories;
    std::vector<InputInfo> inputs;
    /// The graph for these inputs; null when an image it needs is missing.
    Image (*build)(const Inputs& inputs);

    const InputInfo* findInput(std::string_view key) const;
};

/// Null when there is no such filter.
ENGINE_API const FilterInfo* findFilter(std::string_view name);
/// All filters, ordered by name.
ENGINE_API std::vector<const FilterInfo*> allFilters();
/// filter.build with `values`; keys that the filter does not have are ignored.
ENGINE_API Image apply(const FilterInfo& filter, const Values& values);

// ---------------------------------------------------------------------------- looking inside, tuning

/// What a render of an image would do.
struct Plan {
    /// Trips through memory: 1 plus the steps that keep their input in a buffer.
    int passes = 0;
    /// Steps of the graph after folding.
    int steps = 0;
    /// One line per step, inputs indented below.
    std::string text;
};
ENGINE_API Plan planSummary(const Image& image);

enum class InstructionSet { sse2, avx2 };
/// The set in use; at start the best that the processor has.
ENGINE_API InstructionSet instructionSet();
/// For tests. False, and nothing changes, when the processor does not have it.
ENGINE_API bool setInstructionSet(InstructionSet set);
/// For tests and tuning: number of threads that render, 0 for one per core.
ENGINE_API void setThreadCount(int count);
/// For tests and tuning: size of square tiles, 0 for the engine's own choice.
ENGINE_API void setTileSize(int size);

} // namespace engine
