// Images of pixels in memory and of rows produced on demand.
#include "codec.h"

#include <list>
#include <mutex>
#include <stdexcept>

namespace engine {

namespace {

/// Converts pixels straight from where they lie.
class BitmapEvaluator : public Evaluator {
  public:
    /// Row counted from the top; the pointer is valid until the next call.
    using RowOf = std::function<const std::uint8_t*(int)>;

    BitmapEvaluator(const PixelLayout& layout, const RenderSettings& settings, RowOf rowOf)
        : height_(layout.height), step_(bytesPerPixel(layout.format)), codec_(layout, settings),
          rowOf_(std::move(rowOf)) {}

    void row(int x, int y, int n, const Span& out) override {
        codec_.decode(rowOf_(height_ - 1 - y) + x * step_, n, out);
    }

  private:
    int height_;
    std::size_t step_;
    Codec codec_;
    RowOf rowOf_;
};

Rect extentOf(const PixelLayout& layout) {
    return {0, 0, static_cast<double>(layout.width), static_cast<double>(layout.height)};
}

class BitmapNode : public Node {
  public:
    BitmapNode(const PixelLayout& layout, const void* pixels, std::size_t rowBytes,
               std::shared_ptr<const void> owner)
        : Node(extentOf(layout), {}), layout_(layout), pixels_(static_cast<const std::uint8_t*>(pixels)),
          rowBytes_(rowBytes), owner_(std::move(owner)) {}

    std::string name() const override { return "bitmap"; }
    std::shared_ptr<Evaluator> prepare(const IntRect&, RenderContext& context) const override {
        return std::make_shared<BitmapEvaluator>(layout_, context.settings,
                                                 [this](int row) { return pixels_ + row * rowBytes_; });
    }

  private:
    PixelLayout layout_;
    const std::uint8_t* pixels_;
    std::size_t rowBytes_;
    std::shared_ptr<const void> owner_;
};

using Strip = std::vector<std::uint8_t>;
using StripPtr = std::shared_ptr<const Strip>;

/// The strips of a row source that were used last.
class Strips {
  public:
    explicit Strips(std::shared_ptr<RowSource> source)
        : source_(std::move(source)), layout_(source_->layout()),
          rowBytes_(layout_.width * bytesPerPixel(layout_.format)),
          rows_(std::clamp(source_->stripRows(), 1, layout_.height)),
          most_(std::max<std::size_t>(4, memory / (rowBytes_ * rows_))) {}

    int rows() const { return rows_; }
    std::size_t rowBytes() const { return rowBytes_; }
    const PixelLayout& layout() const { return layout_; }

    StripPtr strip(int index) const {
        std::lock_guard lock(mutex_);
        auto found =
            std::find_if(kept_.begin(), kept_.end(), [=](const auto& e) { return e.first == index; });
        if (found != kept_.end()) {
            kept_.splice(kept_.begin(), kept_, found);
        } else {
            int first = index * rows_, count = std::min(rows_, layout_.height - first);
            auto strip = std::make_shared<Strip>(rowBytes_ * count);
            source_->readRows(first, count, strip->data());
            kept_.emplace_front(index, std::move(strip));
            if (kept_.size() > most_) kept_.pop_back();
        }
        return kept_.front().second;
    }

  private:
    /// Enough that a tile finds the rows that its neighbour has read.
    static constexpr std::size_t memory = 32 << 20;

    std::shared_ptr<RowSource> source_;
    PixelLayout layout_;
    std::size_t rowBytes_;
    int rows_;
    std::size_t most_;
    mutable std::mutex mutex_;
    mutable std::list<std::pair<int, StripPtr>> kept_;
};

class RowSourceNode : public Node {
  public:
    explicit RowSourceNode(std::shared_ptr<RowSource> source)
        : Node(extentOf(source->layout()), {}), strips_(std::move(source)) {}

    std::string name() const override { return "rows"; }
    std::shared_ptr<Evaluator> prepare(const IntRect&, RenderContext& context) const override {
        return std::make_shared<BitmapEvaluator>(
            strips_.layout(), context.settings, [this, strip = StripPtr(), held = -1](int row) mutable {
                int index = row / strips_.rows();
                if (index != held) strip = strips_.strip(index), held = index;
                return strip->data() + (row - index * strips_.rows()) * strips_.rowBytes();
            });
    }

  private:
    Strips strips_;
};

} // namespace

Image bitmap(const PixelLayout& layout, const void* pixels, std::size_t rowBytes,
             std::shared_ptr<const void> owner) {
    checkLayout(layout);
    if (!pixels) throw std::invalid_argument("a bitmap needs pixels");
    if (rowBytes / bytesPerPixel(layout.format) < static_cast<std::size_t>(layout.width))
        throw std::invalid_argument("rows of a bitmap are shorter than their pixels");
    return std::make_shared<BitmapNode>(layout, pixels, rowBytes, std::move(owner));
}

Image bitmap(std::shared_ptr<RowSource> rows) {
    if (!rows) throw std::invalid_argument("a bitmap needs pixels");
    checkLayout(rows->layout());
    if (static_cast<std::size_t>(rows->layout().width) > (std::size_t{1} << 28))
        throw std::invalid_argument("an image this wide cannot be read");
    return std::make_shared<RowSourceNode>(std::move(rows));
}

} // namespace engine
