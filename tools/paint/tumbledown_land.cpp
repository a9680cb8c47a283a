// tumbledown-land - paints the eight images of a new land into a folder.
//
// If it refuses its arguments or the folder, it writes nothing, prints one line on standard error
// and ends with status 2. If painting or writing fails, it prints one line and ends with status 1.
// If the land has a fault, it prints one line and ends with status 0.
#include "faults.h"
#include "images.h"
#include "land.h"
#include "painters.h"
#include "progress.h"

#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <new>
#include <optional>
#include <sys/stat.h>

constexpr int STAGES = 12; // stages of the painters when the land is grown only once

constexpr int SMALLEST_SIDE = 351; // samples
constexpr int LARGEST_SIDE = 1501;
constexpr int SIDE_STEP = 25;
constexpr int SHIPPED_SIDE = 801;

constexpr int REFUSED = 2;

constexpr const char *IMAGES[] = {"Map",       "MapTex",  "TexNoise",  "TexCube",
                                  "TexSkyBox", "TexTank", "TexPerson", "TexPersonBack"};

constexpr char HELP[] =
    "Usage: tumbledown-land FOLDER [--seed N] [--side N] [--force]\n"
    "Paints the eight images of a new land for Tumbledown into the folder.\n"
    "\n"
    "  --seed N   grow the land from this number, 0 to 4294967295. By default it is taken\n"
    "             from the clock.\n"
    "  --side N   samples along each side: %d to %d, a multiple of %d plus one. The default\n"
    "             is %d. On a larger land people and tanks are farther apart.\n"
    "  --force    replace images that are in the folder already\n"
    "  --help     show this text\n"
    "  --version  show the version\n";

namespace
{
enum Option
{
    OPTION_SEED = 1,
    OPTION_SIDE,
    OPTION_FORCE,
    OPTION_HELP,
    OPTION_VERSION
};

struct Order
{
    std::string folder;
    uint32_t seed;
    int side;
    bool force;
};
} // namespace

constexpr option OPTIONS[] = {{"seed", required_argument, nullptr, OPTION_SEED},
                              {"side", required_argument, nullptr, OPTION_SIDE},
                              {"force", no_argument, nullptr, OPTION_FORCE},
                              {"help", no_argument, nullptr, OPTION_HELP},
                              {"version", no_argument, nullptr, OPTION_VERSION},
                              {}};

static int complain(const std::string &fault, int status)
{
    endProgress();
    fprintf(stderr, "tumbledown-land: %s\n", fault.c_str());
    return status;
}

[[noreturn]] static void refuse(const std::string &fault)
{
    exit(complain(fault, REFUSED));
}

static std::optional<uint32_t> numberIn(const std::string &text) // accepts digits only
{
    uint32_t number = 0;
    const char *end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end)
        return {};
    return number;
}

static uint32_t seedIn(const std::string &text)
{
    const std::optional<uint32_t> seed = numberIn(text);
    if (!seed)
        refuse("the seed '" + text + "' is not a whole number from 0 to 4294967295");
    return *seed;
}

static int sideIn(const std::string &text)
{
    const std::optional<uint32_t> side = numberIn(text);
    if (!side || *side < SMALLEST_SIDE || *side > LARGEST_SIDE || *side % SIDE_STEP != 1)
        refuse("the side '" + text +
               "' is not one of 351, 376, 401 ... 1501 (multiples of 25, plus one)");
    return int(*side);
}

static uint32_t seedFromClock()
{
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return uint32_t(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

// getopt_long has just refused a word. If it was an option of one letter, optopt is that letter.
// Otherwise the word is the last that was read from argv.
[[noreturn]] static void refuseOption(int result, char **argv)
{
    const bool letter = optopt > OPTION_VERSION;
    const std::string word = letter ? std::string("-") + char(optopt) : argv[optind - 1];
    refuse(result == ':' ? word + " needs a number" : "unknown option '" + word + "'; see --help");
}

static Order readArguments(int argc, char **argv)
{
    Order order = {"", seedFromClock(), SHIPPED_SIDE, false};
    opterr = 0;
    for (int result; (result = getopt_long(argc, argv, ":", OPTIONS, nullptr)) != -1;)
        switch (result)
        {
        case OPTION_SEED:
            order.seed = seedIn(optarg);
            break;
        case OPTION_SIDE:
            order.side = sideIn(optarg);
            break;
        case OPTION_FORCE:
            order.force = true;
            break;
        case OPTION_HELP:
            printf(HELP, SMALLEST_SIDE, LARGEST_SIDE, SIDE_STEP, SHIPPED_SIDE);
            exit(EXIT_SUCCESS);
        case OPTION_VERSION:
            puts("tumbledown-land " TUMBLEDOWN_VERSION);
            exit(EXIT_SUCCESS);
        default:
            refuseOption(result, argv);
        }
    if (optind == argc || !*argv[optind])
        refuse("no folder is given; see --help");
    if (optind + 1 < argc)
        refuse("only one folder can be given, but '" + std::string(argv[optind + 1]) +
               "' is another");
    order.folder = argv[optind];
    return order;
}

// Refuses a folder that has one of the images already. With --force, an image that is a file may be
// replaced.
static void refuseImagesThere(const Order &order)
{
    for (const char *name : IMAGES)
    {
        const std::string path = pathOf(order.folder, name);
        struct stat state = {};
        if (lstat(path.c_str(), &state) != 0)
            continue;
        if (!order.force)
            refuse(path + " is there already; --force replaces the images in the folder");
        if (S_ISDIR(state.st_mode))
            refuse(path + " is a folder");
    }
}

static Images paint(const Land &land)
{
    Images images;
    paintLand(images, land);
    paintGround(images, land);
    paintCube(images);
    paintSky(images);
    paintTank(images);
    paintPeople(images);
    startStage("Writing the images");
    return images;
}

// Quotes a text so that a shell takes it as one word, and a program does not take it as an option.
static std::string quoted(const std::string &text)
{
    std::string word = text[0] == '-' ? "./" + text : text;
    constexpr char PLAIN[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789/._-+";
    if (word.find_first_not_of(PLAIN) == std::string::npos)
        return word;
    std::string result = "'";
    for (const char c : word)
        result += c == '\'' ? "'\\''" : std::string(1, c);
    return result + "'";
}

static int run(const Order &order)
{
    refuseImagesThere(order);
    const std::string obstacle = findFault(order.folder);
    if (!obstacle.empty())
        return complain(obstacle, REFUSED);
    printf("Painting the land of seed %u with %d samples a side\n", order.seed, order.side);
    showProgress(STAGES);
    const Land land = makeLand(order.seed, order.side);
    const std::string fault = saveImages(order.folder, paint(land), order.force);
    if (!fault.empty())
        return complain(fault, EXIT_FAILURE);
    endProgress();
    if (const char *flaw = faultOf(land))
        fprintf(stderr, "tumbledown-land: warning: %s; try another seed\n", flaw);
    const std::string folder = quoted(order.folder);
    printf("The land of seed %u, %d samples a side, is in %s\n"
           "To play it: tumbledown %s (in a checkout of the source: ./play %s)\n",
           order.seed, order.side, folder.c_str(), folder.c_str(), folder.c_str());
    return EXIT_SUCCESS;
}

int main(int argc, char **argv)
{
    signal(SIGXFSZ, SIG_IGN); // a write beyond the limit of file sizes then fails and is reported
    const Order order = readArguments(argc, argv);
    try
    {
        return run(order);
    }
    catch (const std::bad_alloc &)
    {
        return complain("there is not enough memory", EXIT_FAILURE);
    }
}
