// Kernels and their arguments as images.
#include "machine.h"
#include "resample.h"
#include "specialiser.h"

#include "kernel.h"

#include <unordered_map>

namespace engine::kernels {

namespace {

/// How one sampler of a kernel is read.
struct Reading {
    Program::Use use;
    Reader reader;
    IntRect bounds; ///< of the image's pixels
    Wrap wrap;
    bool table;
};

// --------------------------------------------------------------------------------------- reading pixels

/// One sampler, read at any place. The part that is expected to be read is computed as a whole, and anything
/// else in chunks when it is read, so that an expectation that is wrong costs time and changes nothing.
class Anywhere {
  public:
    Anywhere(const Image& image, const Reading& reading, const IntRect& expected, RenderContext& context)
        : image_(image), settings_(context.settings),
          nearest_(reading.reader.interpolation == Interpolation::nearest), none_(reading.bounds.isEmpty()) {
        // With the transparent pixels around the image, to which places beyond are moved. An image without
        // bounds ends where floats still tell neighbours apart from those far away.
        constexpr int far = 1 << 28;
        const IntRect& b = reading.bounds;
        int ring = reading.wrap == Wrap::black ? 1 : 0;
        limits_ = {std::max(b.x0 - ring, -far), std::max(b.y0 - ring, -far), std::min(b.x1 - 1 + ring, far),
                   std::min(b.y1 - 1 + ring, far)};
        IntRect window = expected.intersect({limits_.x0, limits_.y0, limits_.x1 + 2, limits_.y1 + 2});
        if (none_ || window.isEmpty() || window.count() > mostKept) return;
        window_.emplace(window);
        unfilled_ = context.prepare(image_, window);
    }

    void read(const float* u, const float* v, int n, const Span& out) {
        if (none_) {
            out.clear(n);
            return;
        }
        locate(u, v, n);
        IntRect box{x_[0], y_[0], x_[0], y_[0]};
        for (int i = 1; i < n; ++i) {
            box.x0 = std::min(box.x0, x_[i]), box.x1 = std::max(box.x1, x_[i]);
            box.y0 = std::min(box.y0, y_[i]), box.y1 = std::max(box.y1, y_[i]);
        }
        box.x1 += 2, box.y1 += 2;
        if (const Pixels* pixels = holding(box))
            readTogether(*pixels, n, out);
        else
            readOneByOne(n, out);
    }

  private:
    static constexpr int chunkSide = 64;
    static constexpr std::size_t mostChunks = 512;

    /// The whole pixels that lie at or before the places, and how far on the places lie.
    void locate(const float* u, const float* v, int n) {
        struct Axis {
            float low, high, shift;
        };
        float half = nearest_ ? 0.f : 0.5f, more = nearest_ ? 0.5f : 0.f;
        auto axis = [=](int low, int high) {
            return Axis{static_cast<float>(low), static_cast<float>(high) + more, half};
        };
        simd::run([=, across = axis(limits_.x0, limits_.x1), along = axis(limits_.y0, limits_.y1), x = x_,
                   y = y_, fu = u_, fv = v_]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) {
                float px = simd::clamp(u[i] - across.shift, across.low, across.high),
                      py = simd::clamp(v[i] - along.shift, along.low, along.high);
                x[i] = simd::floorInt(px);
                y[i] = simd::floorInt(py);
                fu[i] = px - static_cast<float>(x[i]);
                fv[i] = py - static_cast<float>(y[i]);
            }
        });
    }

    /// What holds all pixels of a box, if one piece does.
    const Pixels* holding(const IntRect& box) {
        if (window_ && window_->area.contains(box)) {
            if (unfilled_) fill(*std::exchange(unfilled_, nullptr), *window_);
            return &*window_;
        }
        const Pixels& first = chunk(box.x0, box.y0);
        return first.area.contains(box) ? &first : nullptr;
    }

    /// The chunk with the pixel (x, y) and its neighbours to the right and above.
    const Pixels& chunk(int x, int y) {
        int i = floorDiv(x, chunkSide), j = floorDiv(y, chunkSide);
        if (last_ && last_->area.x0 == i * chunkSide && last_->area.y0 == j * chunkSide) return *last_;
        auto key =
            static_cast<std::uint64_t>(static_cast<std::uint32_t>(i)) << 32 | static_cast<std::uint32_t>(j);
        auto found = chunks_.find(key);
        if (found == chunks_.end()) {
            if (chunks_.size() == mostChunks) chunks_.clear(), last_ = nullptr;
            IntRect area{i * chunkSide, j * chunkSide, (i + 1) * chunkSide + 1, (j + 1) * chunkSide + 1};
            Pixels pixels(area);
            // A context of its own, which keeps nothing for the chunks to come.
            RenderContext context(settings_, area);
            fill(*context.prepare(image_, area), pixels);
            found = chunks_.emplace(key, std::move(pixels)).first;
        }
        last_ = &found->second;
        return *last_;
    }

    void readTogether(const Pixels& from, int n, const Span& out) {
        int rowStep = static_cast<int>(from.rowStep());
        simd::run([=, x = x_, y = y_, index = index_, x0 = from.area.x0, y0 = from.area.y0]() SIMD_INLINE {
            SIMD_LOOP
            for (int i = 0; i < n; ++i) index[i] = (y[i] - y0) * rowStep + (x[i] - x0);
        });
        for (int c = 0; c < 4; ++c) {
            const float* p = from.row(from.area.y0).plane[c];
            if (nearest_) {
                simd::run([=, index = index_, o = out.plane[c]]() SIMD_INLINE {
                    SIMD_LOOP
                    for (int i = 0; i < n; ++i) o[i] = p[index[i]];
                });
                continue;
            }
            simd::run([=, index = index_, fu = u_, fv = v_, o = out.plane[c]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    int k = index[i];
                    float low = simd::mix(p[k], p[k + 1], fu[i]);
                    float high = simd::mix(p[k + rowStep], p[k + rowStep + 1], fu[i]);
                    o[i] = simd::mix(low, high, fv[i]);
                }
            });
        }
    }

    void readOneByOne(int n, const Span& out) {
        float corners[4][4][mostAtOnce]; // of which component, which corner
        for (int i = 0; i < n; ++i) {
            Span at = chunk(x_[i], y_[i]).at(x_[i], y_[i]);
            std::ptrdiff_t up = last_->rowStep();
            for (int c = 0; c < 4; ++c) {
                const float* p = at.plane[c];
                corners[c][0][i] = p[0], corners[c][1][i] = p[1];
                corners[c][2][i] = p[up], corners[c][3][i] = p[up + 1];
            }
        }
        for (int c = 0; c < 4; ++c) {
            if (nearest_) {
                std::copy_n(corners[c][0], n, out.plane[c]);
                continue;
            }
            simd::run([=, p = corners[c], fu = u_, fv = v_, o = out.plane[c]]() SIMD_INLINE {
                SIMD_LOOP
                for (int i = 0; i < n; ++i) {
                    float low = simd::mix(p[0][i], p[1][i], fu[i]);
                    float high = simd::mix(p[2][i], p[3][i], fu[i]);
                    o[i] = simd::mix(low, high, fv[i]);
                }
            });
        }
    }

    Image image_;
    const RenderSettings& settings_;
    bool nearest_, none_;
    IntRect limits_; // the first and the last pixel that places can lie in
    std::optional<Pixels> window_;
    std::shared_ptr<Evaluator> unfilled_;
    std::unordered_map<std::uint64_t, Pixels> chunks_;
    const Pixels* last_ = nullptr;
    alignas(32) float u_[mostAtOnce], v_[mostAtOnce];
    alignas(32) int x_[mostAtOnce], y_[mostAtOnce], index_[mostAtOnce];
};

/// Pixels a fixed number of pixels away: one of them row by row, several from a buffer.
class Nearby {
  public:
    Nearby(const Image& image, const IntRect& area, const IntRect& box, RenderContext& context) : box_(box) {
        IntRect read{area.x0 + box.x0, area.y0 + box.y0, area.x1 + box.x1, area.y1 + box.y1};
        input_ = context.prepare(image, read);
        if (box.x0 == box.x1 && box.y0 == box.y1) return;
        kept_.emplace(read);
        fill(*input_, *kept_);
    }

    /// Before at(): the row that is computed.
    void begin(int x, int y, int n) {
        if (!kept_) input_->row(x + box_.x0, y + box_.y0, n, row_.span());
        x_ = x, y_ = y;
    }
    /// The pixels that lie (dx, dy) from pixel x of the row.
    Span at(int x, int dx, int dy) { return kept_ ? kept_->at(x + dx, y_ + dy) : row_.span().at(x - x_); }

  private:
    IntRect box_;
    std::shared_ptr<Evaluator> input_;
    std::optional<Pixels> kept_;
    SpanBuffer row_;
    int x_ = 0, y_ = 0;
};

// ------------------------------------------------------------------------------------------- the node

class KernelNode : public Node {
  public:
    KernelNode(std::string name, const Rect& extent, std::vector<Image> images, Program program,
               std::vector<Color> colors, std::vector<Reading> readings, RegionFunction region)
        : Node(extent, std::move(images)), name_(std::move(name)), program_(std::move(program)),
          colors_(std::move(colors)), readings_(std::move(readings)), region_(std::move(region)) {}

    std::string name() const override { return name_; }
    bool materialises() const override {
        return std::any_of(readings_.begin(), readings_.end(), [](const Reading& r) {
            bool row = r.use.neighboursOnly && r.use.box.x0 == r.use.box.x1 && r.use.box.y0 == r.use.box.y1;
            return r.use.read && !row;
        });
    }

    Rect regionOfInterest(std::size_t index, const Rect& area) const override {
        const Reading& reading = readings_[index];
        const Program::Use& use = reading.use;
        if (!use.read) return {};
        if (use.neighboursOnly) {
            const IntRect& b = use.box;
            return {area.x0 + b.x0, area.y0 + b.y0, area.x1 + b.x1, area.y1 + b.y1};
        }
        if (!use.places) {
            Rect seen = region_ ? region_(index, area) : area;
            return reading.reader.fromPlace.apply(seen).grown(2, 2);
        }
        Rect all;
        for (const Affine& place : *use.places) all = all.unite(place.apply(area).grown(2, 2));
        return all;
    }

    std::shared_ptr<Evaluator> prepare(const IntRect& area, RenderContext& context) const override {
        return std::make_shared<Rows>(*this, area, context);
    }

  private:
    class Rows : public Evaluator, private Source {
      public:
        Rows(const KernelNode& node, const IntRect& area, RenderContext& context)
            : node_(node), machine_(node.program_, colorsIn(node, context)), nearby_(node.readings_.size()),
              anywhere_(node.readings_.size()) {
            for (std::size_t i = 0; i < node.readings_.size(); ++i) {
                const Reading& reading = node.readings_[i];
                if (!reading.use.read) continue;
                RenderContext& in = reading.table ? unmatched(context, area) : context;
                const Image& image = node.inputs()[i];
                if (reading.use.neighboursOnly)
                    nearby_[i] = std::make_unique<Nearby>(image, area, reading.use.box, in);
                else
                    anywhere_[i] = std::make_unique<Anywhere>(
                        image, reading, toInt(node.regionOfInterest(i, toRect(area))), in);
            }
        }

        void row(int x, int y, int n, const Span& out) override {
            for (auto& nearby : nearby_)
                if (nearby) nearby->begin(x, y, n);
            for (int first = 0; first < n; first += mostAtOnce) {
                int count = std::min(mostAtOnce, n - first);
                for (const Program::Neighbour& neighbour : node_.program_.neighbours)
                    machine_.setNeighbour(
                        neighbour, nearby_[neighbour.sampler]->at(x + first, neighbour.dx, neighbour.dy));
                machine_.run(x + first, y, count, *this);
                for (int c = 0; c < 4; ++c) std::copy_n(machine_.result(c), count, out.plane[c] + first);
            }
        }

      private:
        void read(int sampler, const float* u, const float* v, int n, const Span& out) override {
            anywhere_[sampler]->read(u, v, n, out);
        }

        static std::vector<Rgba> colorsIn(const KernelNode& node, const RenderContext& context) {
            std::vector<Rgba> colors;
            for (const Color& color : node.colors_) colors.push_back(context.color(color));
            return colors;
        }

        /// The context in which the numbers of bitmaps are read as they are.
        RenderContext& unmatched(const RenderContext& context, const IntRect& area) {
            if (!unmatched_) {
                unmatchedSettings_ = context.settings;
                unmatchedSettings_.colorManaged = false;
                unmatched_ = std::make_unique<RenderContext>(unmatchedSettings_, area);
            }
            return *unmatched_;
        }

        const KernelNode& node_;
        Machine machine_;
        RenderSettings unmatchedSettings_;
        std::unique_ptr<RenderContext> unmatched_;
        std::vector<std::unique_ptr<Nearby>> nearby_;
        std::vector<std::unique_ptr<Anywhere>> anywhere_;
    };

    std::string name_;
    Program program_;
    std::vector<Color> colors_;
    std::vector<Reading> readings_;
    RegionFunction region_;
};

// ---------------------------------------------------------------------------------------- the kernels

class CompiledKernel : public Kernel {
  public:
    CompiledKernel(std::shared_ptr<const Unit> unit, const Function& function)
        : unit_(std::move(unit)), function_(function) {
        for (const FunctionParameter& p : function.parameters) {
            const Type& type = p.variable.type;
            ParameterKind kind = type == sampler ? ParameterKind::sampler
                                 : p.isSample    ? ParameterKind::sample
                                 : p.isColor     ? ParameterKind::color
                                                 : ParameterKind::vector;
            parameters_.push_back({p.variable.name, kind, type.size, p.isTable});
        }
    }

    const std::string& name() const override { return function_.name; }
    const std::vector<Parameter>& parameters() const override { return parameters_; }
    bool isWarp() const override { return function_.result == vec(2); }
    const Unit& unit() const { return *unit_; }
    const Function& function() const { return function_; }

  private:
    std::shared_ptr<const Unit> unit_;
    const Function& function_;
    std::vector<Parameter> parameters_;
};

/// The arguments of a call, in the forms that are needed.
class Arguments {
  public:
    Arguments(const CompiledKernel& kernel, const std::vector<Argument>& arguments) : kernel_(kernel) {
        const auto& parameters = kernel.parameters();
        if (arguments.size() != parameters.size())
            throw std::invalid_argument("the kernel " + kernel.name() + " takes " +
                                        std::to_string(parameters.size()) +
                                        (parameters.size() == 1 ? " argument" : " arguments") + ", not " +
                                        std::to_string(arguments.size()));
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            number_ = i;
            bindings_.push_back(
                std::visit([&](const auto& a) { return bound(parameters[i], a); }, arguments[i]));
        }
    }

    void add(const Sampler& sampler, bool table) {
        auto inverse = sampler.matrix.inverse();
        if (!sampler.matrix.isFinite())
            throw std::invalid_argument("a sampler's matrix needs finite numbers");
        Image image = sampler.image && inverse ? sampler.image : empty();
        const Rect& extent = image->extent();
        readers_.push_back({inverse.value_or(Affine{}), inverse ? sampler.matrix.apply(extent) : Rect{},
                            sampler.interpolation});
        readings_.push_back({{}, readers_.back(), toInt(extent.integral()), sampler.wrap, table});
        images_.push_back(sampler.wrap == Wrap::clamp ? clampToEdge(image) : image);
    }

    Image image(const Rect& extent, RegionFunction region) {
        if (extent.isEmpty()) return empty();
        Program program = specialise(kernel_.unit(), kernel_.function(), bindings_, readers_);
        for (std::size_t i = 0; i < readings_.size(); ++i) readings_[i].use = program.uses[i];
        return std::make_shared<KernelNode>("kernel " + kernel_.name(), extent, std::move(images_),
                                            std::move(program), std::move(colors_), std::move(readings_),
                                            std::move(region));
    }

  private:
    [[noreturn]] void fail(const Parameter& parameter, const std::string& expected) const {
        throw std::invalid_argument("argument " + std::to_string(number_ + 1) + " of the kernel " +
                                    kernel_.name() + " (" + parameter.name + ") has to be " + expected);
    }
    [[noreturn]] void fail(const Parameter& parameter) const {
        switch (parameter.kind) {
        case ParameterKind::sampler:
        case ParameterKind::sample:
            fail(parameter, "an image or a sampler");
        case ParameterKind::color:
            fail(parameter, "a colour");
        case ParameterKind::vector:
            fail(parameter, parameter.size == 1
                                ? "a number"
                                : "a vector of " + std::to_string(parameter.size) + " numbers");
        }
    }

    Binding bound(const Parameter& parameter, const Numbers& numbers) {
        bool takes = parameter.kind == ParameterKind::vector || parameter.kind == ParameterKind::color;
        if (!takes || numbers.size() != static_cast<std::size_t>(parameter.size)) fail(parameter);
        Binding binding{Binding::Kind::numbers};
        for (std::size_t i = 0; i < numbers.size(); ++i) binding.numbers[i] = static_cast<float>(numbers[i]);
        return binding;
    }
    Binding bound(const Parameter& parameter, const Color& color) {
        if (parameter.kind == ParameterKind::color) {
            colors_.push_back(color);
            return {Binding::Kind::color, {}, static_cast<int>(colors_.size()) - 1};
        }
        return bound(parameter, Numbers{color.r, color.g, color.b, color.a});
    }
    Binding bound(const Parameter& parameter, const Sampler& image) {
        bool isSample = parameter.kind == ParameterKind::sample;
        if ((!isSample && parameter.kind != ParameterKind::sampler) || !image.image) fail(parameter);
        add(image, parameter.table);
        return {isSample ? Binding::Kind::sample : Binding::Kind::sampler,
                {},
                static_cast<int>(images_.size()) - 1};
    }

    const CompiledKernel& kernel_;
    std::size_t number_ = 0;
    std::vector<Binding> bindings_;
    std::vector<Reader> readers_;
    std::vector<Reading> readings_;
    std::vector<Image> images_;
    std::vector<Color> colors_;
};

const CompiledKernel& compiled(const KernelPtr& kernel, bool isWarp) {
    if (!kernel) throw std::invalid_argument("there is no kernel to apply");
    if (kernel->isWarp() != isWarp)
        throw std::invalid_argument(
            "the kernel " + kernel->name() +
            (isWarp ? " returns a vec4 and is no warp" : " is a warp and needs an image to read"));
    return static_cast<const CompiledKernel&>(*kernel);
}

} // namespace

std::vector<KernelPtr> compile(std::string_view text) {
    std::shared_ptr<Unit> unit = parse(text);
    check(*unit);
    std::vector<KernelPtr> found;
    for (const auto& function : unit->functions) {
        if (!function->isKernel) continue;
        verify(*unit, *function);
        found.push_back(std::make_shared<CompiledKernel>(unit, *function));
    }
    return found;
}

Image apply(const KernelPtr& kernel, const std::vector<Argument>& arguments, const Rect& extent,
            RegionFunction region) {
    return Arguments(compiled(kernel, false), arguments).image(extent, std::move(region));
}

Image applyWarp(const KernelPtr& kernel, const Sampler& image, const std::vector<Argument>& arguments,
                const Rect& extent, RegionFunction region) {
    Arguments all(compiled(kernel, true), arguments);
    if (!image.image) throw std::invalid_argument("the warp " + kernel->name() + " needs an image to read");
    all.add(image, false);
    return all.image(extent, std::move(region));
}

} // namespace engine::kernels
