// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"
#include "core/bridge/MeshtasticRadioSettings.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

/// A made-up mesh as its file describes it. Fields named `worldSeconds…` run at the scenario's speed; all
/// other seconds are real ones, because somebody waits for what they delay.
namespace nightjar::bridge {

struct Place {
    double latitude = 0;  ///< WGS-84 degrees
    double longitude = 0; ///< WGS-84 degrees

    bool operator==(const Place&) const = default;
};

/// One fix far off, as a receiver between houses gives it; the next one is right again.
struct Outlier {
    double worldSeconds = 0;
    double meters = 0;
};

/// Leaves the resting place along `way` and rests at its end.
struct Ride {
    double worldSeconds = 0;
    double metersPerSecond = 0;
    std::vector<Place> way;
};

struct ParkedPlan {
    double jitterMeters = 0; ///< how far a fix may be off in any direction
    std::vector<Outlier> outliers;
    std::vector<Ride> rides;
};

/// Round and round from the node's position through `way` and back.
struct PathPlan {
    double metersPerSecond = 0;
    std::vector<Place> way;
};

/// To one random place after the other, never farther from the node's position than `radiusMeters`.
struct WanderPlan {
    double metersPerSecond = 0;
    double radiusMeters = 0;
};

using MovementPlan = std::variant<ParkedPlan, PathPlan, WanderPlan>;

struct BatteryPlan {
    double level = 100;      ///< per cent; 101 = on external power
    double drainPerHour = 0; ///< per cent in an hour of the world
};

struct NodePlan {
    std::uint32_t number = 0;
    std::string longName;
    std::string shortName;
    std::string hardware;
    std::optional<BatteryPlan> battery;
    std::optional<double> signalToNoise;
    std::optional<std::uint32_t> hopsAway;
    std::optional<double> heardSecondsAgo; ///< at the moment of connecting; absent = never
    std::optional<Place> position;
    std::optional<std::int32_t> altitude;
    MovementPlan movement;
    std::optional<double> reportWorldSeconds;       ///< between two fixes; absent = is never heard again
    std::optional<double> movingReportWorldSeconds; ///< the same while it moves
};

struct ChannelPlan {
    std::uint32_t index = 0;
    std::optional<std::string> name;
};

struct RestartPlan {
    double afterSeconds = 1; ///< from the answer to the restart
    double lastsSeconds = 1;
    bool onApply = true;
};

struct RadioPlan {
    NodePlan node;
    std::vector<ChannelPlan> channels;
    MeshtasticRadioSettings settings;
    std::optional<std::int32_t> maximumTxPower; ///< dBm; the radio lowers what is above
    double handshakeSeconds = 0;
    double answerSeconds = 0;
    RestartPlan restart;
};

struct ScriptedText {
    double worldSeconds = 0;
    std::uint32_t from = 0;
    std::uint32_t channel = 0;
    bool direct = false; ///< to the base radio instead of the whole channel
    std::string text;
};

struct RandomTexts {
    double leastWorldSeconds = 0;
    double mostWorldSeconds = 0;
    double directShare = 0; ///< 0 to 1
    std::vector<std::uint32_t> channels;
    std::vector<std::string> texts;
};

struct Reply {
    std::string contains; ///< in any case of the letters A to Z; empty = answers every text
    std::string text;     ///< "{text}" stands for what was typed
    double afterSeconds = 0;
    std::optional<std::uint32_t> from; ///< who answers a text to everyone; absent = any node
};

enum class FaultKind {
    error,
    silence,
    late,
    twice,
    incomplete,
    version,
    half,
    garbage,
    exit,
    closeOutput,
    disconnected,
    status,
    restart,
    flood,
    standardError,
    stubborn
};

struct CommandTrigger {
    MeshtasticBridgeCommand command{};
    std::optional<std::uint32_t> count; ///< 1 = the first such command; absent = each of them
};

struct Fault {
    /// Seconds after the answer to `connect`, or a command.
    std::variant<double, CommandTrigger> trigger;
    FaultKind kind{};
    std::optional<std::string> text;
    double seconds = 0;
    int code = 0;
    std::int64_t version = 2;
    std::uint64_t lines = 0;
    std::uint32_t nodes = 0;
    std::uint32_t bytes = 0;
    bool afterAnswer = false;
    bool newPositions = false;
};

struct Scenario {
    std::optional<std::uint64_t> seed; ///< absent = another world each time
    double speed = 1;                  ///< world seconds in a real second
    RadioPlan radio;
    std::vector<NodePlan> nodes;
    std::vector<ScriptedText> script;
    std::optional<RandomTexts> randomTexts;
    std::vector<Reply> replies;
    std::vector<Fault> faults;
};

} // namespace nightjar::bridge
