// The records that hosts of each version receive from the plugin, read back from the host class by class.
#include <hostapi/abi.h>
#include <studio/host.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>

namespace {

struct HostCase {
    const char* name;
    std::optional<double> version;
    int recordVersion;
    bool knowsConsoleFlags;
};

const HostCase hostCases[] = {
    {"2014_01", 2014.01, 12, true}, {"2013_03", 2013.03, 12, true},   {"2013_0", 2013.0, 11, true},
    {"2012_99", 2012.99, 10, true}, {"2012_0", 2012.0, 10, true},     {"2011", 2011.0, 9, true},
    {"2009_05", 2009.05, 9, false}, {"none", std::nullopt, 9, false},
};

void PrintTo(const HostCase& host, std::ostream* out) { *out << host.name; }

struct ClassCase {
    const char* name;
    const char* superclass;
    int dataSize; // rounded
    int properties;
    bool hasConstructor;
    bool hasDestructor;
};

const ClassCase classCases[] = {
    {"CIColorKaz", nullptr, 16, 8, true, true},
    {"CIImageKaz", nullptr, 16, 2, true, true},
    {"CIContextKaz", nullptr, 16, 4, true, true},
    {"CIVectorKaz", nullptr, 16, 8, true, true},
    {"CIFilterShapeKaz", nullptr, 16, 2, true, true},
    {"CIFilterKaz", nullptr, 16, 2, true, true},
    {"CISamplerKaz", nullptr, 16, 2, true, true},
    {"CIAttributeKaz", nullptr, 16, 20, false, true},
    {"CIFeatureKaz", nullptr, 16, 1, true, true},
    {"CIFaceFeatureKaz", "CIFeatureKaz", 0, 0, false, false},
    {"CIDetectorKaz", nullptr, 16, 1, true, true},
};

const char* const globalFunctions[] = {
    "NewCISamplerKaz(ciImage as CIImageKaz) as CISamplerKaz",
    "NewCISamplerKaz(ciImage as CIImageKaz, matrix as NSAffineTransformKaz, WrapMode as String, FilterMode "
    "as string) as CISamplerKaz",
    "NewCIColorKaz(red as single, green as single, blue as single, alpha as single=1.0) as CIColorKaz",
    "NewCIColorWithStringKaz(s as String) as CIColorKaz",
    "NewCIColorWithCGColorKaz(col as CGColorKaz) as CIColorKaz",
    "NewCIImagewithCGImageKaz(cgimage as CGImageKaz) as CIImageKaz",
    "NewCIImagewithCGImageKaz(cgimage as CGImageKaz, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIImagewithURLKaz(url as String) as CIImageKaz",
    "NewCIImagewithURLKaz(url as String, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIImagewithDataKaz(Data as Memoryblock) as CIImageKaz",
    "NewCIImagewithDataKaz(Data as Memoryblock, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIImagewithFileKaz(file as folderitem) as CIImageKaz",
    "NewCIImagewithFileKaz(file as folderitem, cgcolorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIImagewithBitmapDataKaz(data as Memoryblock, BytesPerRow as integer, Width as integer, Height as "
    "integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIImagewithBitmapMemoryKaz(data as Memoryblock, DataLength as Integer, BytesPerRow as integer, Width "
    "as integer, Height as integer, Format as integer, colorspace as CGColorSpaceKaz) as CIImageKaz",
    "NewCIContextKaz(cgcontext as CGContextKaz, OutputColorSpace as CGColorSpaceKaz, WorkingColorSpace as "
    "CGColorSpaceKaz, UseSoftwareRenderer as Boolean) as CIContextKaz",
    "NewCIContextKaz(cgcontext as CGContextKaz) as CIContextKaz",
    "NewCIVectorWithXKaz(x as single) as CIVectorKaz",
    "NewCIVectorWithXYKaz(x as single, y as single) as CIVectorKaz",
    "NewCIVectorWithXYZKaz(x as single, y as single, z as single) as CIVectorKaz",
    "NewCIVectorWithXYZWKaz(x as single, y as single, z as single, w as single) as CIVectorKaz",
    "NewCIVectorWithStringKaz(s as string) as CIVectorKaz",
};

class Registration : public testing::TestWithParam<HostCase> {
  protected:
    Registration() : host({.version = GetParam().version}) { host.loadPlugin(KAZ_PLUGIN); }

    // The flags of a method of the tables; its records have the layout of the version.
    template <class Record>
    static std::optional<std::uint32_t> flagsIn(const void* table, int count, const char* declaration) {
        const Record* records = static_cast<const Record*>(table);
        for (int i = 0; i < count; ++i)
            if (std::strcmp(records[i].declaration, declaration) == 0) return records[i].flags;
        return std::nullopt;
    }

    std::optional<std::uint32_t> methodFlags(const void* table, int count, const char* declaration) const {
        return GetParam().recordVersion == 9 ? flagsIn<REALmethodDefinition9>(table, count, declaration)
                                             : flagsIn<REALmethodDefinition>(table, count, declaration);
    }

    const REALclassDefinition& record(const char* name) const { return *host.findClass(name)->record; }

    studio::Host host;
};

TEST_P(Registration, ChoosesTheRecordVersion) { EXPECT_EQ(host.recordVersion(), GetParam().recordVersion); }

TEST_P(Registration, RegistersElevenClassesInOrder) {
    std::vector<const studio::Class*> classes = host.pluginClasses();
    ASSERT_EQ(classes.size(), std::size(classCases));
    for (std::size_t i = 0; i < classes.size(); ++i) {
        const ClassCase& expected = classCases[i];
        const studio::Class& received = *classes[i];
        SCOPED_TRACE(expected.name);
        EXPECT_EQ(received.name, expected.name);
        EXPECT_EQ(received.superclassName, expected.superclass ? expected.superclass : "");
        EXPECT_EQ(received.recordVersion, GetParam().recordVersion);
        EXPECT_EQ(received.record->version, GetParam().recordVersion);
        EXPECT_EQ(received.dataSize, expected.dataSize);
        EXPECT_EQ(received.flags, 4u);
        EXPECT_EQ(received.properties.size(), static_cast<std::size_t>(expected.properties));
        EXPECT_EQ(received.constructor != nullptr, expected.hasConstructor);
        EXPECT_EQ(received.destructor != nullptr, expected.hasDestructor);
        EXPECT_TRUE(received.sharedProperties.empty());
        EXPECT_TRUE(received.events.empty());
    }
}

TEST_P(Registration, TheHostFillsInWhereInstanceDataBegins) {
    for (const studio::Class* c : host.pluginClasses())
        if (!c->superclass) EXPECT_EQ(c->record->dataOffset, kREALInstanceDataOffset) << c->name;
}

TEST_P(Registration, ConsoleFlagsFitTheHost) {
    const REALclassDefinition& image = record("CIImageKaz");
    const REALclassDefinition& context = record("CIContextKaz");
    const bool knows = GetParam().knowsConsoleFlags;
    EXPECT_EQ(methodFlags(image.sharedMethods, image.sharedMethodCount,
                          "imageWithPicture(Pic as Picture) as CIImageKaz"),
              knows ? 4u : 0u);
    EXPECT_EQ(methodFlags(context.methods, context.methodCount, "Constructor(Pic as Picture)"),
              knows ? 4u : 0u);
    EXPECT_EQ(
        methodFlags(
            image.methods, image.methodCount,
            "RenderPicture(Width as integer = 0, Height as integer = 0, UseSoftwareRenderer as boolean = "
            "false) as Picture"),
        0u);
    EXPECT_EQ(host.findClass("CIContextKaz")->property("Picture")->flags, knows ? 6u : 2u);
}

TEST_P(Registration, EveryOtherFlagIsTheStandardOne) {
    for (const studio::Class* c : host.pluginClasses()) {
        for (const auto& methods : {&c->methods, &c->sharedMethods})
            for (const auto& method : *methods) {
                if (method->signature.name == "RenderPicture" ||
                    method->declaration == "Constructor(Pic as Picture)" ||
                    method->signature.name == "imageWithPicture")
                    continue;
                EXPECT_EQ(method->flags, 4u) << method->fullName();
            }
        for (const studio::Property& property : c->properties)
            if (property.name != "Picture") EXPECT_EQ(property.flags, 6u) << c->name << "." << property.name;
    }
}

TEST_P(Registration, HandlesAreServedFromTheFirstDataWord) {
    for (const studio::Class* c : host.pluginClasses()) {
        const studio::Property* handle = c->property("Handle");
        if (c->name == "CIAttributeKaz") {
            EXPECT_EQ(handle, nullptr);
            continue;
        }
        ASSERT_NE(handle, nullptr) << c->name;
        EXPECT_EQ(handle->typeName, "Integer");
        EXPECT_TRUE(handle->standardGetter());
        EXPECT_EQ(handle->setter, nullptr);
        EXPECT_EQ(handle->parameter, 0u);
    }
}

TEST_P(Registration, ContextFieldsAreServedAndStoredByTheHost) {
    const studio::Class* context = host.findClass("CIContextKaz");
    const studio::Property* picture = context->property("Picture");
    const studio::Property* cgContext = context->property("CGContext");
    ASSERT_TRUE(picture && cgContext);
    EXPECT_TRUE(picture->standardGetter() && picture->standardSetter());
    EXPECT_EQ(picture->parameter, 4u);
    EXPECT_TRUE(cgContext->standardGetter() && cgContext->standardSetter());
    EXPECT_EQ(cgContext->parameter, 12u);
    EXPECT_EQ(cgContext->typeName, "CGContextKaz");
}

TEST_P(Registration, RegistersTheGlobalFunctionsLetterForLetter) {
    std::vector<const studio::Method*> functions = host.pluginFunctions();
    ASSERT_EQ(functions.size(), std::size(globalFunctions));
    for (std::size_t i = 0; i < functions.size(); ++i) {
        EXPECT_EQ(functions[i]->declaration, globalFunctions[i]);
        EXPECT_EQ(functions[i]->flags, 4u);
        EXPECT_EQ(functions[i]->setter, nullptr);
        EXPECT_NE(functions[i]->function, nullptr);
    }
}

TEST_P(Registration, LeavesNoTrace) { EXPECT_TRUE(host.report().clean()) << host.report().text(); }

INSTANTIATE_TEST_SUITE_P(Hosts, Registration, testing::ValuesIn(hostCases),
                         [](const auto& info) { return info.param.name; });

TEST(RegistrationWithout, TheFunctionServiceLeavesFunctionsOut) {
    studio::Host host({.withheld = {"PluginRegisterMethod"}});
    host.loadPlugin(KAZ_PLUGIN);
    EXPECT_EQ(host.pluginClasses().size(), 11u);
    EXPECT_TRUE(host.pluginFunctions().empty());
}

TEST(RegistrationWithout, TheClassServiceLeavesClassesOut) {
    studio::Host host({.withheld = {"PluginRegisterClass"}});
    host.loadPlugin(KAZ_PLUGIN);
    EXPECT_TRUE(host.pluginClasses().empty());
    EXPECT_EQ(host.pluginFunctions().size(), 22u);
}

TEST(RegistrationWithout, TheVersionServiceMeansTheOldestLayout) {
    studio::Host host({.withheld = {"REALGetRBVersion"}});
    host.loadPlugin(KAZ_PLUGIN);
    EXPECT_EQ(host.recordVersion(), 9);
    EXPECT_EQ(host.pluginClasses().size(), 11u);
}

TEST(RegistrationOrder, AsksForTheVersionHandshakeFirst) {
    studio::Host host;
    host.loadPlugin(KAZ_PLUGIN);
    std::vector<std::string> asked = host.requestedServices();
    ASSERT_GE(asked.size(), 4u);
    EXPECT_EQ(asked[0], "RegisterPluginVersion");
    EXPECT_EQ(asked[1], "REALGetRBVersion");
    EXPECT_EQ(asked[2], "PluginRegisterClass");
    EXPECT_EQ(asked[3], "PluginRegisterMethod");
}

} // namespace
