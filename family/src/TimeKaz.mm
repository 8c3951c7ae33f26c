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
    /// The time in units of one TimeScale-th of a second.
    ///     self.Value = 45
    timeField("Value", "Int64", offsetof(CMTime, value)),
    /// The units in a second.
    ///     self.TimeScale = 25
    timeField("TimeScale", "Integer", offsetof(CMTime, timescale)),
    /// Core Media's flags; 1 marks a valid time.
    ///     self.Flags = 1
    timeField("Flags", "UInt32", offsetof(CMTime, flags)),
    /// A number that sets apart times that cannot be compared, such as of two runs of a loop.
    ///     self.Epoch = 0
    timeField("Epoch", "Int64", offsetof(CMTime, epoch)),
    /// The time in seconds; 0 if TimeScale is 0.
    ///     Print Str(self.Seconds)
    property("Seconds", "Double", seconds<CMTime>),
};
REALmethodDefinition cmTimeMethods[] = {
    /// Makes a time of a value in units of one timeScale-th of a second.
    ///     Dim second As New CMTimeKaz(600, 600)
    method("Constructor(value as Int64, timeScale as Integer, flags as UInt32 = 1, epoch as Int64 = 0)",
           initCMTime),
};

REALproperty qtTimeProperties[] = {
    /// The time in units of one TimeScale-th of a second.
    ///     self.TimeValue = 45
    timeField("TimeValue", "Int64", offsetof(QTTime, value)),
    /// The units in a second.
    ///     self.TimeScale = 25
    timeField("TimeScale", "Integer", offsetof(QTTime, timescale)),
    /// QuickTime's flags; 1 marks an indefinite time.
    ///     self.Flags = 0
    timeField("Flags", "Integer", offsetof(QTTime, flags)),
    /// The time in seconds; 0 if TimeScale is 0.
    ///     Print Str(self.Seconds)
    property("Seconds", "Double", seconds<QTTime>),
};
REALmethodDefinition qtTimeMethods[] = {
    /// Makes a time of a value in units of one timeScale-th of a second.
    ///     Dim second As New QTKitTimeKaz(600, 600)
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
    /// Makes a range of its start and its length. Raises NilObjectException if either is Nil.
    ///     Dim second As New CMTimeRangeKaz(New CMTimeKaz(0, 1), New CMTimeKaz(1, 1))
    method("Constructor(start as CMTimeKaz, duration as CMTimeKaz)", initPair<CMTime>),
    /// Returns a copy of the start.
    ///     Print Str(self.Start.Seconds)
    method("Start as CMTimeKaz", partOf<CMTime, &CMTimeRange::first>),
    /// Returns a copy of the length.
    ///     Print Str(self.Duration.Seconds)
    method("Duration as CMTimeKaz", partOf<CMTime, &CMTimeRange::second>),
};
REALmethodDefinition cmTimeMappingMethods[] = {
    /// Makes a mapping from one range to another. Raises NilObjectException if either is Nil.
    ///     Dim same As New CMTimeMappingKaz(range, range)
    method("Constructor(source as CMTimeRangeKaz, target as CMTimeRangeKaz)", initPair<CMTimeRange>),
    /// Returns a copy of the range that is mapped.
    ///     Print Str(self.Source.Duration.Seconds)
    method("Source as CMTimeRangeKaz", partOf<CMTimeRange, &CMTimeMapping::first>),
    /// Returns a copy of the range that it is mapped to.
    ///     Print Str(self.Target.Duration.Seconds)
    method("Target as CMTimeRangeKaz", partOf<CMTimeRange, &CMTimeMapping::second>),
};
REALmethodDefinition qtTimeRangeMethods[] = {
    /// Makes a range of its start and its length. Raises NilObjectException if either is Nil.
    ///     Dim second As New QTKitTimeRangeKaz(New QTKitTimeKaz(0, 1), New QTKitTimeKaz(1, 1))
    method("Constructor(time as QTKitTimeKaz, duration as QTKitTimeKaz)", initPair<QTTime>),
    /// Returns a copy of the start.
    ///     Print Str(self.Time.Seconds)
    method("Time as QTKitTimeKaz", partOf<QTTime, &QTTimeRange::first>),
    /// Returns a copy of the length.
    ///     Print Str(self.Duration.Seconds)
    method("Duration as QTKitTimeKaz", partOf<QTTime, &QTTimeRange::second>),
};

template <class Structure>
REALclassDefinition definitionOf(host::Table<REALproperty> properties,
                                 host::Table<REALmethodDefinition> methods) {
    return classDefinition({.name = Names<Structure>::hostClass, .dataSize = sizeof(Structure)}, properties,
                           methods);
}

} // namespace

/// A time of Core Media: a value in units of one TimeScale-th of a second.
///     Dim time As New CMTimeKaz(90, 30)
REALclassDefinition CMTimeKazClass = definitionOf<CMTime>(cmTimeProperties, cmTimeMethods);
/// A range of Core Media's times.
///     Dim range As New CMTimeRangeKaz(New CMTimeKaz(0, 30), New CMTimeKaz(90, 30))
REALclassDefinition CMTimeRangeKazClass = definitionOf<CMTimeRange>({}, cmTimeRangeMethods);
/// A range of Core Media's times and the range that it is mapped to.
///     Dim range As New CMTimeRangeKaz(New CMTimeKaz(0, 30), New CMTimeKaz(90, 30))
///     Dim mapping As New CMTimeMappingKaz(range, range)
REALclassDefinition CMTimeMappingKazClass = definitionOf<CMTimeMapping>({}, cmTimeMappingMethods);
/// A time of QuickTime: a value in units of one TimeScale-th of a second.
///     Dim time As New QTKitTimeKaz(90, 30)
REALclassDefinition QTKitTimeKazClass = definitionOf<QTTime>(qtTimeProperties, qtTimeMethods);
/// A range of QuickTime's times.
///     Dim range As New QTKitTimeRangeKaz(New QTKitTimeKaz(0, 30), New QTKitTimeKaz(90, 30))
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
