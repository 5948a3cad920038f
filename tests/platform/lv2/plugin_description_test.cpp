#include "platform/lv2/plugin_description.h"

#include "support/lv2_bundles.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace orvane::platform::lv2 {
namespace {

using test::Lv2Bundles;
using testing::ElementsAre;
using testing::IsEmpty;

PluginDescription description(const std::string& moreOfThePlugin) {
    const Lv2Bundles bundles;
    bundles.add("one.lv2", Lv2Bundles::plugin("urn:one", "One", moreOfThePlugin));
    PluginBundle bundle(bundles.searchPath() + "one.lv2");
    return describe(bundle, bundle.plugin("urn:one")).value();
}

ControlPort control(const std::string& more) {
    return description(
               "lv2:port [ a lv2:ControlPort, lv2:InputPort ; lv2:index 2 ; lv2:symbol \"c\" ; "
               "lv2:name \"C\" ; "
               + more + " ] ;"
    )
        .controls.at(0);
}

TEST(PluginDescription, MainPortsAreThoseThatCarryTheSignal) {
    const PortRole input{PortKind::audio, true, false, false, ""};
    const PortRole output{PortKind::audio, false, false, false, ""};
    const auto sideChain = [](PortRole role) { return role.isSideChain = true, role; };
    const auto optional = [](PortRole role) { return role.isOptional = true, role; };
    const auto in = [](const char* group, PortRole role) { return role.group = group, role; };
    using Indices = std::vector<std::uint32_t>;
    const std::tuple<const char*, std::vector<PortRole>, Indices, Indices> cases[] = {
        {"mono", {input, output}, {0}, {1}},
        {"control voltages are no audio", {input, output, {PortKind::cv, true, false, false, ""}}, {0}, {1}},
        {"a side chain", {sideChain(input), input, output}, {1}, {2}},
        {"an optional port of no group", {input, optional(input), output}, {0}, {2}},
        {"an optional right side",
         {in("g", input), optional(in("g", input)), optional(in("h", input)), output},
         {0, 1},
         {3}},
        {"nothing but optional ports", {optional(input), optional(input), output}, {0, 1}, {2}},
        {"a generator", {sideChain(input), output}, {}, {1}}};
    for (const auto& [what, roles, inputs, outputs] : cases) {
        const MainAudioPorts ports = mainAudioPorts(roles);
        EXPECT_EQ(ports.inputs, inputs) << what;
        EXPECT_EQ(ports.outputs, outputs) << what;
    }
}

TEST(PluginDescription, SideChainsAreDetectedByPropertyOrByGroup) {
    const auto described = description(
        "lv2:port [ lv2:portProperty lv2:isSideChain ; " + Lv2Bundles::audioPort(2, "Input")
        + "] , [ pg:group <urn:group> ; " + Lv2Bundles::audioPort(3, "Input")
        + "] . <urn:group> pg:sideChainOf <urn:main> . <urn:one> "
    );
    EXPECT_THAT(described.audio.inputs, ElementsAre(0));
}

TEST(PluginDescription, ReadsWhatAnEditorNeedsOfAControl) {
    const ControlPort full =
        control("lv2:minimum 20 ; lv2:maximum 20000.0 ; lv2:default 1000 ; units:unit units:hz ; "
                "lv2:portProperty pprops:logarithmic, pprops:notOnGUI ; pprops:rangeSteps 11 ; "
                "pg:group [ lv2:name \"Band\" ] ; lv2:scalePoint [ lv2:name \"x\" ] , "
                "[ <http://www.w3.org/2000/01/rdf-schema#label> \"speech\" ; "
                "<http://www.w3.org/1999/02/22-rdf-syntax-ns#value> 3000 ] , "
                "[ <http://www.w3.org/2000/01/rdf-schema#label> \"hum\" ; "
                "<http://www.w3.org/1999/02/22-rdf-syntax-ns#value> 50 ]");
    const AUParameterInfo expected{
        .identifier = "c",
        .displayName = "C",
        .unitName = "Hz",
        .group = "Band",
        .minValue = 20.0F,
        .maxValue = 20000.0F,
        .defaultValue = 1000.0F,
        .isLogarithmic = true,
        .stepCount = 11,
        .isHidden = true,
        .namedValues = {{50.0F, "hum"}, {3000.0F, "speech"}}};
    EXPECT_EQ(full.info, expected);
    EXPECT_EQ(full.index, 2U);

    using Kind = AUParameterInfo::Kind;
    EXPECT_EQ(control("lv2:portProperty lv2:toggled").info.kind, Kind::toggle);
    EXPECT_EQ(control("lv2:portProperty lv2:integer").info.kind, Kind::integer);
    EXPECT_EQ(control("lv2:portProperty lv2:enumeration").info.kind, Kind::integer) << "has no names";
    EXPECT_EQ(control("units:unit [ units:symbol \"sone\" ]").info.unitName, "sone");
    EXPECT_TRUE(control("lv2:portProperty lv2:sampleRate").scalesWithSampleRate);
}

TEST(PluginDescription, CorrectsInvalidValuesOfAControl) {
    const std::tuple<const char*, float, float, float> cases[] = {
        {"lv2:default 0.25", 0.0F, 1.0F, 0.25F},
        {"lv2:minimum 5 ; lv2:maximum 2 ; lv2:default 9", 2.0F, 5.0F, 5.0F},
        {"lv2:minimum \"low\" ; lv2:maximum 1e99 ; lv2:default \"NaN\"", 0.0F, 1.0F, 0.0F},
        {"lv2:minimum 3", 3.0F, 3.0F, 3.0F}};
    for (const auto& [range, minValue, maxValue, defaultValue] : cases) {
        const AUParameterInfo info =
            control(std::string(range) + " ; lv2:portProperty pprops:logarithmic").info;
        EXPECT_EQ(info.minValue, minValue) << range;
        EXPECT_EQ(info.maxValue, maxValue) << range;
        EXPECT_EQ(info.defaultValue, defaultValue) << range;
        EXPECT_EQ(info.isLogarithmic, minValue > 0.0F) << range;
    }
}

TEST(PluginDescription, PortsThatTheHostControlsAreNotParameters) {
    for (const auto& [designation, held] : {std::pair("lv2:enabled", 1.0F), {"lv2:freeWheeling", 0.0F}}) {
        const auto described = description(
            "lv2:port [ a lv2:ControlPort, lv2:InputPort ; lv2:index 2 ; lv2:symbol \"c\" ; "
            "lv2:name \"C\" ; lv2:designation "
            + std::string(designation) + " ] ;"
        );
        EXPECT_THAT(described.controls, IsEmpty());
        EXPECT_EQ(described.heldValues.at(2), held);
    }
}

} // namespace
} // namespace orvane::platform::lv2
