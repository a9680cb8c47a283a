#include "images.h"

#include "image.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

constexpr size_t HEADER_BYTES = 18; // of a TGA file

namespace
{
// While this object exists, signals that ask the program to end are held back.
class SignalsHeld
{
public:
    SignalsHeld()
    {
        sigset_t set;
        sigemptyset(&set);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
            sigaddset(&set, signal);
        sigprocmask(SIG_BLOCK, &set, &before);
    }
    ~SignalsHeld()
    {
        sigprocmask(SIG_SETMASK, &before, nullptr);
    }
    SignalsHeld(const SignalsHeld &) = delete;
    SignalsHeld &operator=(const SignalsHeld &) = delete;

private:
    sigset_t before;
};

// The folder, made if it was missing. Two painters that write into one folder wait for each other.
class OpenFolder
{
public:
    explicit OpenFolder(const std::string &folder)
        : name(folder), made(mkdir(folder.c_str(), 0777) == 0),
          descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
    {
        if (isOpen())
            flock(descriptor, LOCK_EX);
    }
    ~OpenFolder()
    {
        if (isOpen())
            close(descriptor);
    }
    OpenFolder(const OpenFolder &) = delete;
    OpenFolder &operator=(const OpenFolder &) = delete;

    bool isOpen() const
    {
        return descriptor >= 0;
    }
    void flush() const // writes the names in the folder to the disk
    {
        fsync(descriptor);
    }
    void undo() const // removes the folder if it was made here and is empty
    {
        if (made)
            rmdir(name.c_str());
    }

private:
    const std::string name;
    const bool made;
    const int descriptor;
};
} // namespace

unsigned char toByte(float channel)
{
    return static_cast<unsigned char>(std::clamp(channel, 0.0f, 1.0f) * 255.0f + 0.5f);
}

void addColours(Images &images, const char *name, const Grid<Colour> &canvas, int depth)
{
    Image image = {name, canvas.width, canvas.height, depth, {}};
    image.bytes.reserve(canvas.cells.size() * size_t(depth / 8));
    for (const Colour &c : canvas.cells)
    {
        image.bytes.insert(image.bytes.end(), {toByte(c.r), toByte(c.g), toByte(c.b)});
        if (depth == 32)
            image.bytes.push_back(255);
    }
    images.push_back(image);
}

void addGreys(Images &images, const char *name, const Grid<unsigned char> &greys)
{
    images.push_back({name, greys.width, greys.height, 8, greys.cells});
}

std::string pathOf(const std::string &folder, const char *name)
{
    return folder + "/" + name + ".tga";
}

static std::string temporaryPath(const std::string &folder, const char *name)
{
    return folder + "/." + name + ".tga.part";
}

static std::string refusal(const char *what, const std::string &path)
{
    const int reason = errno;
    return std::string("cannot ") + what + " " + path + ": " + strerror(reason ? reason : EIO);
}

// tgaSave does not report a full disk. A short file or a failing fsync shows it.
static bool isComplete(const std::string &path, size_t bytes)
{
    struct stat state = {};
    if (stat(path.c_str(), &state) != 0 || size_t(state.st_size) != bytes)
        return false;
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool complete = descriptor >= 0 && fsync(descriptor) == 0;
    if (descriptor >= 0)
        close(descriptor);
    return complete;
}

static bool writeImage(const std::string &path, const Image &image)
{
    const size_t bytes = image.bytes.size();
    unsigned char *pixels = static_cast<unsigned char *>(malloc(bytes));
    if (!pixels)
        return false;
    memcpy(pixels, image.bytes.data(), bytes);
    errno = 0;
    if (tgaSave(path.c_str(), short(image.width), short(image.height),
                static_cast<unsigned char>(image.depth), pixels) == TGA_OK)
        return isComplete(path, HEADER_BYTES + bytes);
    free(pixels);
    return false;
}

static std::string writeTemporaries(const std::string &folder, const Images &images)
{
    for (const Image &image : images)
        if (!writeImage(temporaryPath(folder, image.name), image))
            return refusal("write", pathOf(folder, image.name));
    return "";
}

static std::string renameTemporaries(const std::string &folder, const Images &images)
{
    for (const Image &image : images)
    {
        const std::string path = pathOf(folder, image.name);
        if (rename(temporaryPath(folder, image.name).c_str(), path.c_str()) != 0)
            return refusal("write", path);
    }
    return "";
}

static std::string findImage(const std::string &folder, const Images &images)
{
    for (const Image &image : images)
        if (struct stat state = {}; lstat(pathOf(folder, image.name).c_str(), &state) == 0)
            return pathOf(folder, image.name) + " is there already";
    return "";
}

std::string saveImages(const std::string &folder, const Images &images, bool replace)
{
    const SignalsHeld held;
    const OpenFolder place(folder);
    if (!place.isOpen())
        return refusal("open the folder", folder);
    std::string fault = replace ? "" : findImage(folder, images);
    if (fault.empty())
        fault = writeTemporaries(folder, images);
    if (fault.empty())
        fault = renameTemporaries(folder, images);
    place.flush();
    if (fault.empty())
        return "";
    for (const Image &image : images)
        unlink(temporaryPath(folder, image.name).c_str());
    place.undo();
    return fault;
}

std::string findFault(const std::string &folder)
{
    const SignalsHeld held;
    const OpenFolder place(folder);
    if (!place.isOpen())
        return refusal("make the folder", folder);
    const std::string path = temporaryPath(folder, "try");
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    std::string fault = file < 0 ? refusal("write into the folder", folder) : "";
    if (file >= 0)
        close(file);
    unlink(path.c_str());
    place.undo();
    return fault;
}
