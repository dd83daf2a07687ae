// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bridge/simulated/Movement.h"

#include "bridge/simulated/Terrain.h"

#include <cmath>
#include <numbers>

namespace nightjar::bridge {
namespace {

/// Anywhere within `meters`, evenly over the disc; never outside it, as a guard counts on the limit.
Place scattered(Place center, double meters, Random& random) {
    const double angle = random.between(0, 2 * std::numbers::pi);
    const double distance = meters * std::sqrt(random.share());
    return displaced(center, distance * std::cos(angle), distance * std::sin(angle));
}

class Parked final : public Movement {
public:
    Parked(const ParkedPlan& plan, Place start, Random random) : m_plan(plan), m_random(random) {
        Place rest = start;
        for (const Ride& ride : plan.rides) {
            m_ways.emplace_back(rest, ride.way);
            rest = m_ways.back().end();
        }
        m_start = start;
    }

    Place fix(double worldSeconds) override {
        const Place place = scattered(where(worldSeconds), m_plan.jitterMeters, m_random);
        if (m_nextOutlier == m_plan.outliers.size())
            return place;
        const Outlier& outlier = m_plan.outliers[m_nextOutlier];
        if (worldSeconds < outlier.worldSeconds)
            return place;
        ++m_nextOutlier;
        const double angle = m_random.between(0, 2 * std::numbers::pi);
        return displaced(place, outlier.meters * std::cos(angle), outlier.meters * std::sin(angle));
    }

    bool isMoving(double worldSeconds) const override {
        for (std::size_t i = 0; i < m_ways.size(); ++i) {
            const double ridden = distanceRidden(i, worldSeconds);
            if (ridden >= 0 && ridden < m_ways[i].meters())
                return true;
        }
        return false;
    }

private:
    double distanceRidden(std::size_t ride, double worldSeconds) const {
        return (worldSeconds - m_plan.rides[ride].worldSeconds) * m_plan.rides[ride].metersPerSecond;
    }

    Place where(double worldSeconds) const {
        Place place = m_start;
        for (std::size_t i = 0; i < m_ways.size(); ++i) {
            const double ridden = distanceRidden(i, worldSeconds);
            if (ridden >= 0)
                place = m_ways[i].at(ridden);
        }
        return place;
    }

    ParkedPlan m_plan;
    Random m_random;
    Place m_start;
    std::vector<Way> m_ways; ///< one for each ride
    std::size_t m_nextOutlier = 0;
};

class Path final : public Movement {
public:
    Path(const PathPlan& plan, Place start) : m_pace(plan.metersPerSecond), m_way(closed(plan, start)) {}

    Place fix(double worldSeconds) override {
        if (m_way.meters() <= 0)
            return m_way.end();
        return m_way.at(std::fmod(worldSeconds * m_pace, m_way.meters()));
    }
    bool isMoving(double) const override { return m_way.meters() > 0; }

private:
    static Way closed(const PathPlan& plan, Place start) {
        auto places = plan.way;
        places.push_back(start);
        return {start, places};
    }

    double m_pace;
    Way m_way;
};

class Wander final : public Movement {
public:
    Wander(const WanderPlan& plan, Place start, Random random)
        : m_plan(plan), m_home(start), m_place(start), m_target(start), m_random(random) {}

    Place fix(double worldSeconds) override {
        double left = (worldSeconds - m_last) * m_plan.metersPerSecond;
        m_last = worldSeconds;
        // Many short legs in one long silence end anywhere; a few of them show that as well as all.
        for (int legs = 0; legs < 16; ++legs) {
            const double distance = metersBetween(m_place, m_target);
            if (distance > left) {
                const Place from = m_place;
                m_place = Way(from, {&m_target, 1}).at(left);
                break;
            }
            left -= distance;
            m_place = m_target;
            m_target = scattered(m_home, m_plan.radiusMeters, m_random);
        }
        return m_place;
    }
    bool isMoving(double) const override { return true; }

private:
    WanderPlan m_plan;
    Place m_home;
    Place m_place;
    Place m_target;
    double m_last = 0;
    Random m_random;
};

} // namespace

std::unique_ptr<Movement> makeMovement(const MovementPlan& plan, Place start, Random random) {
    if (const auto* path = std::get_if<PathPlan>(&plan))
        return std::make_unique<Path>(*path, start);
    if (const auto* wander = std::get_if<WanderPlan>(&plan))
        return std::make_unique<Wander>(*wander, start, random);
    return std::make_unique<Parked>(std::get<ParkedPlan>(plan), start, random);
}

} // namespace nightjar::bridge
