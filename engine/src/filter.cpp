// The filters by name, and the values of their inputs.
#include "filter.h"

#include <cmath>
#include <stdexcept>

namespace engine {

namespace {

/// All filters by name; made when the first one registers itself.
std::map<std::string, FilterInfo, std::less<>>& filters() {
    static std::map<std::string, FilterInfo, std::less<>> all;
    return all;
}

double finite(double v) { return std::isfinite(v) ? v : 0; }

InputInfo input(std::string key, std::string displayName, InputKind kind, std::string_view type) {
    InputInfo info;
    info.key = std::move(key);
    info.displayName = std::move(displayName);
    info.kind = kind;
    info.type = type;
    return info;
}

} // namespace

Registrar::Registrar(FilterInfo info) {
    std::string name = info.name;
    filters().emplace(std::move(name), std::move(info));
}

std::vector<std::string> categories(std::string_view names) {
    std::vector<std::string> out;
    for (std::size_t begin = 0; begin < names.size();) {
        std::size_t end = std::min(names.find(' ', begin), names.size());
        out.push_back(std::string(names.substr(begin, end - begin)));
        begin = end + 1;
    }
    return out;
}

InputInfo imageInput(std::string key, std::string displayName) {
    return input(std::move(key), std::move(displayName), InputKind::image, "Image");
}

InputInfo numberInput(std::string key, std::string displayName, std::string_view type,
                      const NumberFacts& facts) {
    InputInfo info = input(std::move(key), std::move(displayName), InputKind::number, type);
    if (facts.value) info.defaultValue = *facts.value;
    if (facts.identity) info.identity = *facts.identity;
    info.min = facts.min, info.max = facts.max;
    info.sliderMin = facts.sliderMin, info.sliderMax = facts.sliderMax;
    return info;
}

InputInfo vectorInput(std::string key, std::string displayName, std::string_view type, Numbers value,
                      std::optional<Numbers> identity) {
    InputInfo info = input(std::move(key), std::move(displayName), InputKind::vector, type);
    info.defaultValue = std::move(value);
    if (identity) info.identity = std::move(*identity);
    return info;
}

InputInfo colorInput(std::string key, std::string displayName, std::string_view type, const Color& value,
                     std::optional<Color> identity) {
    InputInfo info = input(std::move(key), std::move(displayName), InputKind::color, type);
    info.defaultValue = value;
    if (identity) info.identity = *identity;
    return info;
}

InputInfo transformInput(std::string key, std::string displayName, std::string_view type) {
    InputInfo info = input(std::move(key), std::move(displayName), InputKind::transform, type);
    info.defaultValue = info.identity = Affine{};
    return info;
}

InputInfo dataInput(std::string key, std::string displayName, Bytes value, Bytes identity) {
    InputInfo info = input(std::move(key), std::move(displayName), InputKind::data, "");
    info.defaultValue = std::move(value);
    info.identity = std::move(identity);
    return info;
}

const InputInfo* FilterInfo::findInput(std::string_view key) const {
    for (const InputInfo& input : inputs)
        if (input.key == key) return &input;
    return nullptr;
}

const FilterInfo* findFilter(std::string_view name) {
    auto found = filters().find(name);
    return found == filters().end() ? nullptr : &found->second;
}

std::vector<const FilterInfo*> allFilters() {
    std::vector<const FilterInfo*> out;
    for (const auto& entry : filters()) out.push_back(&entry.second);
    return out;
}

Image apply(const FilterInfo& filter, const Values& values) { return filter.build(Inputs(filter, values)); }

template <class T>
const T* Inputs::find(std::string_view key) const {
    const InputInfo* info = filter_.findInput(key);
    const Value* value = info && info->defaultValue ? &*info->defaultValue : nullptr;
    if (auto given = values_.find(key); given != values_.end()) value = &given->second;
    if (!value) return nullptr;
    if (auto typed = std::get_if<T>(value)) return typed;
    throw std::invalid_argument(filter_.name + ": " + std::string(key) + " is of another kind");
}

Image Inputs::image(std::string_view key) const {
    auto v = find<Image>(key);
    return v ? *v : nullptr;
}

double Inputs::number(std::string_view key) const {
    auto v = find<double>(key);
    if (v && std::isfinite(*v)) return *v;
    const InputInfo* info = filter_.findInput(key);
    auto standard = info && info->defaultValue ? std::get_if<double>(&*info->defaultValue) : nullptr;
    return standard ? *standard : 0;
}

double Inputs::number(std::string_view key, double low, double high) const {
    return std::clamp(number(key), low, high);
}

Numbers Inputs::vector(std::string_view key) const {
    auto v = find<Numbers>(key);
    Numbers out = v ? *v : Numbers{};
    for (double& x : out) x = finite(x);
    return out;
}

Numbers Inputs::vector(std::string_view key, std::size_t count) const {
    Numbers out = vector(key);
    out.resize(count);
    return out;
}

Point Inputs::point(std::string_view key) const {
    Numbers v = vector(key, 2);
    return {v[0], v[1]};
}

Rect Inputs::rect(std::string_view key) const {
    // Infinite sizes are valid, unlike infinite numbers elsewhere.
    auto v = find<Numbers>(key);
    Numbers n = v ? *v : Numbers{};
    n.resize(4);
    return Rect::ofSize(n[0], n[1], n[2], n[3]);
}

Color Inputs::color(std::string_view key) const {
    auto v = find<Color>(key);
    if (!v) return {};
    return {finite(v->r), finite(v->g), finite(v->b), finite(v->a)};
}

Affine Inputs::affine(std::string_view key) const {
    auto v = find<Affine>(key);
    return v && v->isFinite() ? *v : Affine{};
}

std::string Inputs::string(std::string_view key) const {
    auto v = find<std::string>(key);
    return v ? *v : std::string();
}

Bytes Inputs::data(std::string_view key) const {
    auto v = find<Bytes>(key);
    return v ? *v : Bytes();
}

} // namespace engine
