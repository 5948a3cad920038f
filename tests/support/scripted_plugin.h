#pragma once

#include "support/build_files.h"
#include "support/lv2_bundles.h"
#include "support/scripted_lv2.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <string>

namespace orvane::test {

inline const std::string scriptedLv2Library = builtModule("liborvane_scripted_lv2");

/// A description of the scripted plugin.
inline std::string scripted(const std::string& variant, const std::string& more = "") {
    return fmt::format(
        R"(<urn:orvane:test:{0}> a lv2:Plugin ; doap:name "{0}" ; doap:maintainer [ foaf:name "Tests" ] ;
        lv2:binary <file://{1}> ; {2} lv2:port
        [ {3} ] , [ {4} ] ,
        [ a lv2:ControlPort, lv2:InputPort ; lv2:index 2 ; lv2:symbol "gain" ; lv2:name "Gain" ;
          lv2:default 0.5 ; lv2:maximum 2 ] ,
        [ a lv2:ControlPort, lv2:OutputPort ; lv2:index 3 ; lv2:symbol "answer" ; lv2:name "Answer" ] ,
        [ a atom:AtomPort, lv2:InputPort ; lv2:index 4 ; lv2:symbol "in" ; lv2:name "In" ] ,
        [ a atom:AtomPort, lv2:OutputPort ; lv2:index 5 ; lv2:symbol "out" ; lv2:name "Out" ;
          rsz:minimumSize 65544 ] ,
        [ lv2:portProperty lv2:connectionOptional, lv2:isSideChain ; {5} ] ,
        [ a lv2:CVPort, lv2:InputPort ; lv2:index 7 ; lv2:symbol "cv" ; lv2:name "CV" ] .)",
        variant, scriptedLv2Library, more, Lv2Bundles::audioPort(0, "Input"),
        Lv2Bundles::audioPort(1, "Output"), Lv2Bundles::audioPort(6, "Input")
    );
}

/// A description of a scripted plugin with three audio ports only.
inline std::string
scriptedPorts(const std::string& variant, const char* first, const char* second, const char* third) {
    return fmt::format(
        R"(<urn:orvane:test:{0}> a lv2:Plugin ; doap:name "{0}" ; lv2:binary <file://{1}> ; lv2:port
        [ {2} ] , [ {3} ] , [ {4} ] .)",
        variant, scriptedLv2Library, Lv2Bundles::audioPort(0, first), Lv2Bundles::audioPort(1, second),
        Lv2Bundles::audioPort(2, third)
    );
}

/// A description of the scripted amplifier, which is silent except in offline rendering.
inline std::string scriptedAmplifier() {
    return fmt::format(
        R"(<urn:orvane:test:amplifier> a lv2:Plugin ; doap:name "amplifier" ; lv2:binary <file://{}> ; lv2:port
        [ {} ] , [ {} ] , [ a lv2:ControlPort, lv2:InputPort ; lv2:index 2 ; lv2:symbol "offline" ;
          lv2:name "Offline" ; lv2:designation lv2:freeWheeling ] .)",
        scriptedLv2Library, Lv2Bundles::audioPort(0, "Input"), Lv2Bundles::audioPort(1, "Output")
    );
}

/// The probe that the scripted plugin and its editor share with the test.
inline ScriptedLv2Probe& probe() {
    void* const library = ::dlopen(scriptedLv2Library.c_str(), RTLD_NOW | RTLD_LOCAL);
    return *reinterpret_cast<decltype(&orvaneScriptedLv2Probe)>(::dlsym(library, "orvaneScriptedLv2Probe"))();
}

} // namespace orvane::test
