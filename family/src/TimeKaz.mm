// The times of Core Media and of QuickTime: classes that hold their fields, and the category of NSValue that
// turns them into values and back.
#include "support.h"

#include <cstddef>

namespace family {
namespace {

struct CMTime {
    std::int64_t value;
    std::int32_t timescale;
    std::uint32_t flags;
    std::int64_t epoch;
};
struct QTTime {
    std::int64_t value;
    std::int32_t timescale;
    std::int32_t flags;
};

// Two of a kind: a range's start and duration, a mapping's source and target.
template <class Part>
struct Pair {
    Part first, second;
};
using CMTimeRange = Pair<CMTime>;
using CMTimeMapping = Pair<CMTimeRange>;
using QTTimeRange = Pair<QTTime>;
static_assert(sizeof(CMTime) == 24 && sizeof(CMTimeMapping) == 96 && sizeof(QTTime) == 16);

// Each structure's host class and the encoding that its values carry.
template <class Structure>
struct Names;
template <>
struct Names<CMTime> {
    static constexpr char hostClass[] = "CMTimeKaz", encoding[] = "{?=qiIq}";
};
template <>
struct Names<CMTimeRange> {
    static constexpr char hostClass[] = "CMTimeRangeKaz", encoding[] = "{?={?=qiIq}{?=qiIq}}";
};
template <>
struct Names<CMTimeMapping> {
    static constexpr char hostClass[] = "CMTimeMappingKaz",
                          encoding[] = "{?={?={?=qiIq}{?=qiIq}}{?={?=qiIq}{?=qiIq}}}";
};
template <>
struct Names<QTTime> {
    static constexpr char hostClass[] = "QTKitTimeKaz", encoding[] = "{?=qll}";
};
template <>
struct Names<QTTimeRange> {
    static constexpr char hostClass[] = "QTKitTimeRangeKaz", encoding[] = "{?={?=qll}{?=qll}}";
};

template <class Structure>
REALobject newStructure(const Structure& fields) {
    return bridge::newObject(Names<Structure>::hostClass, fields);
}

template <class Structure>
NSValue* valueOf(REALobject object) {
    return [NSValue valueWithBytes:&instanceData<Structure>(object) objCType:Names<Structure>::encoding];
}

template <class Structure>
REALobject objectOf(NSValue* value) {
    Structure fields = {};
    [value getValue:&fields];
    return newStructure(fields);
}

// --- times ------------------------------------------------------------------------------------------------

void initCMTime(REALobject self, std::int64_t value, std::int32_t timescale, std::uint32_t flags,
                std::int64_t epoch) {
    instanceData<CMTime>(self) = {value, timescale, flags, epoch};
}

void initQTTime(REALobject self, std::int64_t value, std::int32_t timescale, std::int32_t flags) {
    instanceData<QTTime>(self) = {value, timescale, flags};
}

template <class Time>
double seconds(REALobject self, std::uint32_t) {
    const Time& time = instanceData<Time>(self);
    return time.timescale ? static_cast<double>(time.value) / time.timescale : 0;
}

REALproperty timeField(const char* name, const char* type, std::size_t offset) {
    return host::settableField(name, type, static_cast<std::uint32_t>(offset));
}

REALproperty cmTimeProperties[] = {
    timeField("Value", "Int64", offsetof(CMTime, value)),
    timeField("TimeScale", "Integer", offsetof(CMTime, timescale)),
    timeField("Flags", "UInt32", offsetof(CMTime, flags)),
    timeField("Epoch", "Int64", offsetof(CMTime, epoch)),
    property("Seconds", "Double", seconds<CMTime>),
};
REALmethodDefinition cmTimeMethods[] = {
    method("Constructor(value as Int64, timeScale as Integer, flags as UInt32 = 1, epoch as Int64 = 0)",
           initCMTime),
};

REALproperty qtTimeProperties[] = {
    timeField("TimeValue", "Int64", offsetof(QTTime, value)),
    timeField("TimeScale", "Integer", offsetof(QTTime, timescale)),
    timeField("Flags", "Integer", offsetof(QTTime, flags)),
    property("Seconds", "Double", seconds<QTTime>),
};
REALmethodDefinition qtTimeMethods[] = {
    method("Constructor(timeValue as Int64, timeScale as Integer, flags as Integer = 0)", initQTTime),
};

// --- pairs ------------------------------------------------------------------------------------------------

template <class Part>
void initPair(REALobject self, REALobject first, REALobject second) {
    if (raisesWhenNull(first, "time is nil") || raisesWhenNull(second, "time is nil")) return;
    instanceData<Pair<Part>>(self) = {instanceData<Part>(first), instanceData<Part>(second)};
}

template <class Part, Part Pair<Part>::*part>
REALobject partOf(REALobject self) {
    return newStructure(instanceData<Pair<Part>>(self).*part);
}

REALmethodDefinition cmTimeRangeMethods[] = {
    method("Constructor(start as CMTimeKaz, duration as CMTimeKaz)", initPair<CMTime>),
    method("Start as CMTimeKaz", partOf<CMTime, &CMTimeRange::first>),
    method("Duration as CMTimeKaz", partOf<CMTime, &CMTimeRange::second>),
};
REALmethodDefinition cmTimeMappingMethods[] = {
    method("Constructor(source as CMTimeRangeKaz, target as CMTimeRangeKaz)", initPair<CMTimeRange>),
    method("Source as CMTimeRangeKaz", partOf<CMTimeRange, &CMTimeMapping::first>),
    method("Target as CMTimeRangeKaz", partOf<CMTimeRange, &CMTimeMapping::second>),
};
REALmethodDefinition qtTimeRangeMethods[] = {
    method("Constructor(time as QTKitTimeKaz, duration as QTKitTimeKaz)", initPair<QTTime>),
    method("Time as QTKitTimeKaz", partOf<QTTime, &QTTimeRange::first>),
    method("Duration as QTKitTimeKaz", partOf<QTTime, &QTTimeRange::second>),
};

template <class Structure>
REALclassDefinition definitionOf(host::Table<REALproperty> properties,
                                 host::Table<REALmethodDefinition> methods) {
    return classDefinition({.name = Names<Structure>::hostClass, .dataSize = sizeof(Structure)}, properties,
                           methods);
}

} // namespace

REALclassDefinition CMTimeKazClass = definitionOf<CMTime>(cmTimeProperties, cmTimeMethods);
REALclassDefinition CMTimeRangeKazClass = definitionOf<CMTimeRange>({}, cmTimeRangeMethods);
REALclassDefinition CMTimeMappingKazClass = definitionOf<CMTimeMapping>({}, cmTimeMappingMethods);
REALclassDefinition QTKitTimeKazClass = definitionOf<QTTime>(qtTimeProperties, qtTimeMethods);
REALclassDefinition QTKitTimeRangeKazClass = definitionOf<QTTimeRange>({}, qtTimeRangeMethods);

} // namespace family

// Objects are read in place and made with a reference for the caller.
@interface NSValue (KazTimes)
@end

@implementation NSValue (KazTimes)

+ (NSValue*)valueWithCMTimeKaz:(REALobject)time {
    return family::valueOf<family::CMTime>(time);
}
+ (NSValue*)valueWithCMTimeRangeKaz:(REALobject)range {
    return family::valueOf<family::CMTimeRange>(range);
}
+ (NSValue*)valueWithCMTimeMappingKaz:(REALobject)mapping {
    return family::valueOf<family::CMTimeMapping>(mapping);
}
+ (NSValue*)valueWithQTTimeKaz:(REALobject)time {
    return family::valueOf<family::QTTime>(time);
}
+ (NSValue*)valueWithQTTimeRangeKaz:(REALobject)range {
    return family::valueOf<family::QTTimeRange>(range);
}

- (REALobject)CMTimeValueKaz {
    return family::objectOf<family::CMTime>(self);
}
- (REALobject)CMTimeRangeValueKaz {
    return family::objectOf<family::CMTimeRange>(self);
}
- (REALobject)CMTimeMappingValueKaz {
    return family::objectOf<family::CMTimeMapping>(self);
}
- (REALobject)QTTimeValueKaz {
    return family::objectOf<family::QTTime>(self);
}
- (REALobject)QTTimeRangeValueKaz {
    return family::objectOf<family::QTTimeRange>(self);
}

@end
