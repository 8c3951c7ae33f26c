#include "targets.h"

#include "runtime/runtime.h"

namespace studio {

// The host stands in for the Mac's, in a program without windows.
const std::map<std::string, Surroundings::Constant>& targetConstants() {
    static std::map<std::string, Surroundings::Constant> constants = {
        {"targetmacos", true},        {"targetmacho", true},         {"targetcocoa", true},
        {"targetcarbon", false},      {"targetmacosclassic", false}, {"targetwin32", false},
        {"targetwindows", false},     {"targetlinux", false},        {"targetx86", true},
        {"targetpowerpc", false},     {"target32bit", true},         {"target64bit", false},
        {"targetlittleendian", true}, {"targetbigendian", false},    {"targethasgui", false},
        {"targetdesktop", false},     {"targetconsole", true},       {"targetweb", false},
        {"debugbuild", true},
    };
    constants["rbversion"] = runtime().version();
    constants["xojoversion"] = runtime().version();
    return constants;
}

} // namespace studio
