#pragma once

#include <cstddef>
#include <functional>
#include <string>

/**
 * A call of ours beside the nearest call of OpenCV, on the same data, each on one thread.
 *
 * Both alternate within one loop, so that whatever else the machine does meets both alike; the medians are
 * compared.
 */
struct Duel {
    std::string group; ///< the table it belongs to
    std::string name;
    unsigned width;
    unsigned height;
    std::size_t bytes; ///< read and written by one call, at the least
    std::function<void()> ours;
    std::function<void()> theirs;
};

/** Enters a duel with the benchmark library. `i_make` runs when its turn comes, so that only one duel's
 * images are alive. */
void registerDuel(const std::string& i_group, const std::string& i_name, unsigned i_width, unsigned i_height,
    std::function<Duel()> i_make);

/** The image sizes at which everything is measured. */
template <class Register> void atEachSize(const Register& i_register)
{
    i_register(1920u, 1080u);
    i_register(4096u, 4096u);
}
