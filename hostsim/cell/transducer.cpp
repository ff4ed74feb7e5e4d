// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/cell/transducer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace cell
{

namespace
{

constexpr const char *NAMES[CONDITIONS] = {"good",     "drifted1", "drifted2",
                                           "drifted3", "noisy",    "dead"};

// The middle of the bands that the limits 0.25, 1 and 2 percent of the span
// leave, so that a point of a drifted sensor keeps its colour along the range.
double drift_of_span(Condition condition)
{
    switch (condition) {
    case Condition::Drifted1:
        return 0.006;
    case Condition::Drifted2:
        return 0.015;
    case Condition::Drifted3:
        return 0.03;
    default:
        return 0.0;
    }
}

constexpr double NOISY_OF_SPAN = 0.005;

// A lag counts as run out within this part of the span.
constexpr double SETTLED_OF_SPAN = 1e-5;

double through_points(const std::vector<double> &x, const std::vector<double> &y, double at)
{
    if (x.empty())
        return 0.0;
    if (x.size() == 1)
        return y.front();
    const auto above = std::upper_bound(x.begin(), x.end(), at);
    const auto upper =
        std::clamp<std::ptrdiff_t>(above - x.begin(), 1, static_cast<std::ptrdiff_t>(x.size()) - 1);
    const auto i = static_cast<std::size_t>(upper);
    const double part = (at - x[i - 1]) / (x[i] - x[i - 1]);
    return part == 1.0 ? y[i] : y[i - 1] + part * (y[i] - y[i - 1]);
}

} // namespace

const char *condition_name(Condition condition)
{
    return NAMES[static_cast<int>(condition)];
}

bool condition_from_name(const std::string &name, Condition *condition)
{
    if (name == "drifted") {
        *condition = Condition::Drifted1;
        return true;
    }
    for (int i = 0; i < CONDITIONS; ++i) {
        if (name == NAMES[i]) {
            *condition = static_cast<Condition>(i);
            return true;
        }
    }
    return false;
}

double response_mv(const Response &response, double applied)
{
    switch (response.kind) {
    case Response::Kind::None:
        return 0.0;
    case Response::Kind::Points:
        return through_points(response.units, response.mv, applied);
    case Response::Kind::Linear:
    case Response::Kind::Polynomial:
        break;
    }
    double sum = 0.0;
    for (std::size_t i = response.coefficients.size(); i-- > 0;)
        sum = sum * applied + response.coefficients[i];
    return sum;
}

double settled_mv(const TransducerSpec &spec, Condition condition, double applied, double hours)
{
    if (condition == Condition::Dead)
        return 0.0;
    const double felt = applied + drift_of_span(condition) * (spec.to - spec.from);
    return spec.gain * response_mv(spec.response, felt) + spec.offset_mv +
           spec.drift_mv_per_hour * hours;
}

double span_mv(const TransducerSpec &spec)
{
    return std::fabs(response_mv(spec.response, spec.to) - response_mv(spec.response, spec.from));
}

double noise_deviation(const TransducerSpec &spec, Condition condition)
{
    if (condition == Condition::Dead)
        return 0.0;
    if (condition == Condition::Noisy)
        return std::max(spec.noise_mv, NOISY_OF_SPAN * span_mv(spec));
    return spec.noise_mv;
}

Transducer::Transducer(TransducerSpec spec, unsigned seed) : m_spec(std::move(spec)), m_random(seed)
{
    m_applied = m_spec.from;
}

void Transducer::apply(double value)
{
    m_applied = value;
    m_settled = false;
}

void Transducer::set_condition(Condition condition)
{
    m_condition = condition;
    m_jump = true;
    m_settled = false;
}

void Transducer::jump()
{
    m_jump = true;
    m_settled = false;
}

// A normal deviate by the polar method: unlike the standard library's, the
// same numbers come out of every library.
double Transducer::noise()
{
    const auto uniform = [this] {
        return static_cast<double>(m_random() >> 11) * (2.0 / 9007199254740992.0) - 1.0;
    };
    double u = 0.0;
    double s = 0.0;
    do {
        u = uniform();
        const double v = uniform();
        s = u * u + v * v;
    } while (s >= 1.0 || s == 0.0);
    return u * std::sqrt(-2.0 * std::log(s) / s);
}

double Transducer::step(double seconds, double hours)
{
    const double target = settled_mv(m_spec, m_condition, m_applied, hours);
    if (m_jump || m_spec.lag_seconds <= 0.0)
        m_level = target;
    else
        m_level += (target - m_level) * (1.0 - std::exp(-seconds / m_spec.lag_seconds));
    m_jump = false;
    if (!(std::fabs(target - m_level) > SETTLED_OF_SPAN * span_mv(m_spec))) {
        m_level = target;
        m_settled = true;
    }
    const double deviation = noise_deviation(m_spec, m_condition);
    const double reading = deviation > 0.0 ? m_level + deviation * noise() : m_level;
    // A dead sensor gives nothing, whatever its electronics could saturate at.
    if (m_condition == Condition::Dead)
        return 0.0;
    return std::min(std::max(reading, m_spec.low_mv), m_spec.high_mv);
}

} // namespace cell
