// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a sensor makes of the value applied to it: curve, error, first order
// lag, noise and saturation. Pure arithmetic on what is handed in; the same
// seed and the same calls give the same millivolts everywhere.
#ifndef HOSTSIM_CELL_TRANSDUCER_H
#define HOSTSIM_CELL_TRANSDUCER_H

#include <limits>
#include <random>
#include <string>
#include <vector>

namespace cell
{

enum class Condition { Good, Drifted1, Drifted2, Drifted3, Noisy, Dead };

constexpr int CONDITIONS = 6;

// "good", "drifted1" and so on.
const char *condition_name(Condition condition);
// "drifted" alone is the first degree of it. False for any other text.
bool condition_from_name(const std::string &name, Condition *condition);

// The curve from the applied value to true millivolts.
struct Response {
    enum class Kind { None, Linear, Points, Polynomial };
    Kind kind = Kind::None;
    std::vector<double> units;        // of the points, ascending, in applied units
    std::vector<double> mv;           // of the points
    std::vector<double> coefficients; // mV, lowest power first; two for Linear
};

struct TransducerSpec {
    std::string units; // of the applied value
    double from = 0.0; // range that can be applied, in these units
    double to = 100.0;
    Response response;
    double offset_mv = 0.0; // error of the sensor
    double gain = 1.0;
    double drift_mv_per_hour = 0.0;
    double lag_seconds = 0.0;
    double noise_mv = 0.0; // standard deviation
    double low_mv = -std::numeric_limits<double>::infinity();
    double high_mv = std::numeric_limits<double>::infinity();
};

// True millivolts of a faultless sensor; straight on beyond the curve's ends.
double response_mv(const Response &response, double applied);

// Millivolts that a sensor in that condition settles on after so many hours,
// without noise and saturation. A drifted sensor reads as if 0.6, 1.5 or 3
// percent of its range more were applied; a dead one gives 0.
double settled_mv(const TransducerSpec &spec, Condition condition, double applied, double hours);

// Difference of the millivolts at both ends of the range, never negative.
double span_mv(const TransducerSpec &spec);

// Deviation of the noise, mV; a noisy sensor has at least 0.5 % of its span.
double noise_deviation(const TransducerSpec &spec, Condition condition);

// One sensor in time.
class Transducer
{
public:
    Transducer() = default;
    Transducer(TransducerSpec spec, unsigned seed);

    const TransducerSpec &spec() const { return m_spec; }
    double applied() const { return m_applied; }
    Condition condition() const { return m_condition; }
    // The lag has run out: what step gives differs by noise and drift alone.
    bool settled() const { return m_settled; }

    // Takes effect with the sensor's lag.
    void apply(double value);
    // Takes effect at once.
    void set_condition(Condition condition);
    // Ends the lag: the next step starts from the final value.
    void jump();

    // The reading, mV, seconds after the former step and hours after the start.
    double step(double seconds, double hours);

private:
    double noise();

    TransducerSpec m_spec;
    Condition m_condition = Condition::Good;
    double m_applied = 0.0;
    double m_level = 0.0; // mV behind the lag
    bool m_jump = true;
    bool m_settled = false;
    std::mt19937_64 m_random;
};

} // namespace cell

#endif
