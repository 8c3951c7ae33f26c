#include "runtime/arrays.h"

#include "runtime/exceptions.h"
#include "runtime/references.h"
#include "runtime/strings.h"
#include "runtime/text.h"
#include "runtime/variants.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace studio {

int elementSize(const Type* element) {
    switch (element->kind) {
    case Kind::Boolean:
    case Kind::Int8:
    case Kind::UInt8:
        return 1;
    case Kind::Int16:
    case Kind::UInt16:
        return 2;
    case Kind::Int64:
    case Kind::UInt64:
    case Kind::Double:
        return 8;
    default:
        return 4;
    }
}

namespace {

void showStorage(ArrayObject& array) {
    array.face.storage = runtime().exposesArrayStorage() && array.count > 0 ? array.data : nullptr;
}

Bits load(const ArrayObject& array, std::int32_t index) {
    const char* at = array.data + index * elementSize(array.element);
    switch (array.element->kind) {
    case Kind::Boolean:
        return Bits::of(*at != 0);
    case Kind::Int8:
        return Bits::of(std::int32_t(*reinterpret_cast<const std::int8_t*>(at)));
    case Kind::UInt8:
        return Bits::of(std::int32_t(*reinterpret_cast<const std::uint8_t*>(at)));
    case Kind::Int16:
        return Bits::of(std::int32_t(*reinterpret_cast<const std::int16_t*>(at)));
    case Kind::UInt16:
        return Bits::of(std::int32_t(*reinterpret_cast<const std::uint16_t*>(at)));
    default: {
        Bits bits;
        std::memcpy(&bits, at, std::size_t(elementSize(array.element)));
        return bits;
    }
    }
}

void store(ArrayObject& array, std::int32_t index, Bits value) {
    int size = elementSize(array.element);
    std::memcpy(array.data + index * size, &value, std::size_t(size));
}

void reserve(ArrayObject& array, std::int32_t count) {
    if (count <= array.capacity) return;
    std::int32_t capacity = std::max(count, array.capacity + array.capacity / 2 + 4);
    auto* data = static_cast<char*>(
        std::realloc(array.data, std::size_t(capacity) * std::size_t(elementSize(array.element))));
    if (!data) raise("OutOfMemoryException", "There is no memory for the array.");
    array.data = data;
    array.capacity = capacity;
}

void checkBounds(const ArrayObject& array, std::int32_t index) {
    if (index < 0 || index >= array.count)
        raise("OutOfBoundsException",
              "index " + std::to_string(index) + " is outside 0 to " + std::to_string(array.count - 1));
}

void finalizeArray(REALobject object) {
    ArrayObject& array = arrayOf(object);
    if (array.element->isCounted())
        for (std::int32_t i = 0; i < array.count; ++i) release(array.element, load(array, i));
    std::free(array.data);
}

} // namespace

bool isArray(REALobject object) { return object && classOf(object).arrayElement; }

namespace {

REALobject emptyArray(const Type* element, int rank) {
    Class& cls = *classes().arrayOf(element, rank)->cls;
    cls.finalize = finalizeArray;
    ObjectRef object(heap().allocate(cls, sizeof(ArrayObject)));
    arrayOf(object).element = element;
    arrayOf(object).rank = rank;
    return object.release();
}

std::int32_t product(const std::vector<std::int32_t>& extents) {
    std::int64_t count = 1;
    for (std::int32_t extent : extents) {
        if (extent < 0) raise("OutOfBoundsException", "an upper bound must be at least -1");
        count *= extent;
        if (count > INT32_MAX / 8) raise("OutOfMemoryException", "There is no memory for the array.");
    }
    return std::int32_t(count);
}

} // namespace

REALobject newArray(const Type* element, std::int32_t count) {
    ObjectRef object(emptyArray(element, 1));
    arrayResize(arrayOf(object), std::max(count, 0));
    return object.release();
}

REALobject newArray(const Type* element, const std::vector<std::int32_t>& extents) {
    if (extents.size() == 1) return newArray(element, extents[0]);
    ObjectRef object(emptyArray(element, int(extents.size())));
    ArrayObject& array = arrayOf(object);
    arrayResize(array, product(extents));
    std::copy(extents.begin(), extents.end(), array.extents);
    return object.release();
}

std::int32_t arrayExtent(const ArrayObject& array, std::int32_t dimension) {
    if (dimension < 1 || dimension > array.rank)
        raise("OutOfBoundsException", "the array has no dimension " + std::to_string(dimension));
    return array.rank == 1 ? array.count : array.extents[dimension - 1];
}

std::int32_t arrayOffset(const ArrayObject& array, const std::int32_t* indices) {
    std::int32_t offset = 0;
    for (std::int32_t i = 0; i < array.rank; ++i) {
        if (indices[i] < 0 || indices[i] >= array.extents[i])
            raise("OutOfBoundsException", "index " + std::to_string(indices[i]) + " of dimension " +
                                              std::to_string(i + 1) + " is outside 0 to " +
                                              std::to_string(array.extents[i] - 1));
        offset = offset * array.extents[i] + indices[i];
    }
    return offset;
}

void arrayResize(ArrayObject& array, const std::vector<std::int32_t>& extents) {
    ObjectRef resized(newArray(array.element, extents));
    ArrayObject& to = arrayOf(resized);
    std::int32_t at[kMostDimensions] = {};
    for (std::int32_t n = 0; n < array.count; ++n) {
        bool fits = true;
        std::int32_t rest = n;
        for (int i = array.rank - 1; i >= 0; --i) {
            at[i] = rest % array.extents[i];
            rest /= array.extents[i];
            fits &= at[i] < to.extents[i];
        }
        if (fits) arraySet(to, arrayOffset(to, at), arrayGet(array, n));
    }
    std::swap(array.data, to.data);
    std::swap(array.count, to.count);
    std::swap(array.capacity, to.capacity);
    std::swap(array.extents, to.extents);
    showStorage(array);
    showStorage(to);
}

Bits arrayGet(ArrayObject& array, std::int32_t index) {
    checkBounds(array, index);
    return retain(array.element, load(array, index));
}

void arraySet(ArrayObject& array, std::int32_t index, Bits value) {
    if (index < 0 || index >= array.count) release(array.element, value);
    checkBounds(array, index);
    Bits old = load(array, index);
    store(array, index, value);
    release(array.element, old);
}

void arrayInsert(ArrayObject& array, std::int32_t index, Bits value) {
    if (index < 0 || index > array.count) {
        release(array.element, value);
        raise("OutOfBoundsException",
              "index " + std::to_string(index) + " is outside 0 to " + std::to_string(array.count));
    }
    reserve(array, array.count + 1);
    int size = elementSize(array.element);
    std::memmove(array.data + (index + 1) * size, array.data + index * size,
                 std::size_t((array.count - index) * size));
    ++array.count;
    store(array, index, value);
    showStorage(array);
}

void arrayAppend(ArrayObject& array, Bits value) { arrayInsert(array, array.count, value); }

void arrayRemove(ArrayObject& array, std::int32_t index) {
    checkBounds(array, index);
    Bits old = load(array, index);
    int size = elementSize(array.element);
    std::memmove(array.data + index * size, array.data + (index + 1) * size,
                 std::size_t((array.count - index - 1) * size));
    --array.count;
    showStorage(array);
    release(array.element, old);
}

void arrayResize(ArrayObject& array, std::int32_t count) {
    while (array.count > count) arrayRemove(array, array.count - 1);
    reserve(array, count);
    std::size_t size = std::size_t(elementSize(array.element));
    if (count > array.count)
        std::memset(array.data + std::size_t(array.count) * size, 0, std::size_t(count - array.count) * size);
    array.count = count;
    showStorage(array);
}

int compareValues(const Type* type, Bits a, Bits b) {
    auto order = [](auto x, auto y) { return x < y ? -1 : x > y ? 1 : 0; };
    switch (type->kind) {
    case Kind::Boolean:
        return order(a.boolean, b.boolean);
    case Kind::UInt32:
    case Kind::Color:
        return order(a.u32, b.u32);
    case Kind::Int64:
        return order(a.i64, b.i64);
    case Kind::UInt64:
        return order(a.u64, b.u64);
    case Kind::Single:
        return order(a.f32, b.f32);
    case Kind::Double:
        return order(a.f64, b.f64);
    case Kind::String:
        // Text that is UTF-8 already needs no conversion.
        if (encodingOf(a.string) == kREALTextEncodingUTF8 && encodingOf(b.string) == kREALTextEncodingUTF8)
            return text::compare(bytesOf(a.string), bytesOf(b.string));
        return text::compare(toUtf8(a.string), toUtf8(b.string));
    case Kind::Variant:
    case Kind::Object:
    case Kind::Array:
        return order(a.object, b.object);
    default:
        return order(a.i32, b.i32);
    }
}

bool valuesEqual(const Type* type, Bits a, Bits b) {
    if (type->kind == Kind::Variant) return variantsEqual(a.object, b.object);
    return compareValues(type, a, b) == 0;
}

std::int32_t arrayIndexOf(ArrayObject& array, Bits value, std::int32_t from) {
    for (std::int32_t i = std::max(from, 0); i < array.count; ++i)
        if (valuesEqual(array.element, load(array, i), value)) return i;
    return -1;
}

namespace {

std::vector<Bits> elementsOf(const ArrayObject& array) {
    std::vector<Bits> values;
    for (std::int32_t i = 0; i < array.count; ++i) values.push_back(load(array, i));
    return values;
}

// Merge sort: it stays within its bounds whatever a comparison written in a program answers.
void mergeSort(std::vector<std::int32_t>& order,
               const std::function<bool(std::int32_t, std::int32_t)>& before) {
    std::vector<std::int32_t> merged(order.size());
    for (std::size_t width = 1; width < order.size(); width *= 2) {
        for (std::size_t low = 0; low < order.size(); low += 2 * width) {
            std::size_t middle = std::min(low + width, order.size()),
                        high = std::min(low + 2 * width, order.size());
            for (std::size_t a = low, b = middle, to = low; to < high; ++to)
                merged[to] =
                    b >= high || (a < middle && !before(order[b], order[a])) ? order[a++] : order[b++];
        }
        order.swap(merged);
    }
}

void arrange(ArrayObject& array, const std::vector<std::int32_t>& order) {
    std::vector<Bits> values = elementsOf(array);
    for (std::int32_t i = 0; i < array.count; ++i)
        store(array, i, values[std::size_t(order[std::size_t(i)])]);
}

// Holds the elements meanwhile: a comparison written in a program may drop them.
std::vector<std::int32_t> sortedOrder(const ArrayObject& array, const Comparison& compare) {
    struct Elements {
        const Type* type;
        std::vector<Bits> values;
        ~Elements() {
            for (Bits value : values) release(type, value);
        }
    } held{array.element, elementsOf(array)};
    for (Bits value : held.values) retain(array.element, value);
    std::vector<std::int32_t> order(held.values.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = std::int32_t(i);
    mergeSort(order, [&](std::int32_t a, std::int32_t b) {
        return compare(held.values[std::size_t(a)], held.values[std::size_t(b)]) < 0;
    });
    return order;
}

} // namespace

void arraySort(ArrayObject& array) {
    std::vector<Bits> values = elementsOf(array);
    std::stable_sort(values.begin(), values.end(),
                     [&](Bits a, Bits b) { return compareValues(array.element, a, b) < 0; });
    for (std::int32_t i = 0; i < array.count; ++i) store(array, i, values[std::size_t(i)]);
}

void arraySort(ArrayObject& array, const Comparison& compare) {
    std::int32_t count = array.count;
    std::vector<std::int32_t> order = sortedOrder(array, compare);
    if (array.count != count)
        raise("UnsupportedOperationException", "the array was changed while it was sorted");
    arrange(array, order);
}

void arraySortWith(ArrayObject& array, const std::vector<ArrayObject*>& others) {
    for (ArrayObject* other : others)
        if (other->count != array.count)
            raise("OutOfBoundsException", "the arrays to sort together differ in length");
    std::vector<std::int32_t> order =
        sortedOrder(array, [&](Bits a, Bits b) { return compareValues(array.element, a, b); });
    arrange(array, order);
    for (ArrayObject* other : others) arrange(*other, order);
}

} // namespace studio
