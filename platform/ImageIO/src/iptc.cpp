// The properties of IPTC under Image I/O's keys.
#include "metadata.h"

namespace imageio {

std::span<const IPTCProperty> iptcProperties() {
    static constexpr IPTCProperty all[] = {
        {3, "ObjectTypeReference"},
        {4, "ObjectAttributeReference", true},
        {5, "ObjectName"},
        {7, "EditStatus"},
        {8, "EditorialUpdate"},
        {10, "Urgency"},
        {12, "SubjectReference", true},
        {15, "Category"},
        {20, "SupplementalCategory", true},
        {22, "FixtureIdentifier"},
        {25, "Keywords", true},
        {26, "ContentLocationCode", true},
        {27, "ContentLocationName", true},
        {30, "ReleaseDate"},
        {35, "ReleaseTime"},
        {37, "ExpirationDate"},
        {38, "ExpirationTime"},
        {40, "SpecialInstructions"},
        {42, "ActionAdvised"},
        {45, "ReferenceService", true},
        {47, "ReferenceDate", true},
        {50, "ReferenceNumber", true},
        {55, "DateCreated"},
        {60, "TimeCreated"},
        {62, "DigitalCreationDate"},
        {63, "DigitalCreationTime"},
        {65, "OriginatingProgram"},
        {70, "ProgramVersion"},
        {75, "ObjectCycle"},
        {80, "Byline", true},
        {85, "BylineTitle", true},
        {90, "City"},
        {92, "SubLocation"},
        {95, "Province/State"},
        {100, "Country/PrimaryLocationCode"},
        {101, "Country/PrimaryLocationName"},
        {103, "OriginalTransmissionReference"},
        {105, "Headline"},
        {110, "Credit"},
        {115, "Source"},
        {116, "CopyrightNotice"},
        {118, "Contact", true},
        {120, "Caption/Abstract"},
        {122, "Writer/Editor", true},
        {130, "ImageType"},
        {131, "ImageOrientation"},
        {135, "LanguageIdentifier"},
    };
    return all;
}

} // namespace imageio
