/* Preloaded into a program, gives pseudo terminals the modem lines of serial ports and lists them as the machine's only
   ports. "/dev/NAME" opens the terminal of the port NAME. As on a real port the system raises RTS and DTR at open and
   drops them at the last close. Everything else passes through. */

#define _GNU_SOURCE
#include "simserial.h"

#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <termios.h>
#include <time.h>
#include <unistd.h>

enum { kMaxPorts = 16, kMaxName = 64, kMaxList = 4096, kMaxDescriptors = 1024 };
static const uint32_t kOutputs = SIMSERIAL_RTS | SIMSERIAL_DTR;
_Static_assert(SIMSERIAL_DTR == TIOCM_DTR && SIMSERIAL_RTS == TIOCM_RTS && SIMSERIAL_CTS == TIOCM_CTS &&
                   SIMSERIAL_DCD == TIOCM_CD && SIMSERIAL_DSR == TIOCM_DSR,
               "the lines pass through as they are");

struct Port
{
    char name[kMaxName];
    struct SimSerialState *state;
};

static pthread_mutex_t s_lock = PTHREAD_MUTEX_INITIALIZER;
static struct Port s_ports[kMaxPorts];
static int s_portCount = 0;
static char s_list[kMaxList];
/* Ports that this process has opened itself: a descriptor that was handed to it is closed without an effect. */
static unsigned char s_isOpened[kMaxDescriptors];

/* Declares `real` as the next definition of `name`. */
#define REAL(result, name, ...)                                                                                        \
    static result (*real)(__VA_ARGS__);                                                                                \
    if (!real)                                                                                                         \
    *(void **)&real = dlsym(RTLD_NEXT, #name)

static int realClose(int fd)
{
    REAL(int, close, int);
    return real(fd);
}

static int realOpen(const char *path, int flags)
{
    REAL(int, open, const char *, int, ...);
    return real(path, flags);
}

/* ---- The listed ports ---------------------------------------------------------------------------------------- */

static struct SimSerialState *mapState(const char *file)
{
    const int fd = realOpen(file, O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return NULL;
    struct SimSerialState *state = NULL;
    struct stat info;
    if (fstat(fd, &info) == 0 && (size_t)info.st_size >= sizeof *state) {
        void *memory = mmap(NULL, sizeof *state, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
        state = memory == MAP_FAILED ? NULL : memory;
    }
    realClose(fd);
    if (state && state->magic != SIMSERIAL_MAGIC) {
        munmap(state, sizeof *state);
        state = NULL;
    }
    return state;
}

static void forgetPorts(void)
{
    for (int i = 0; i < s_portCount; i++)
        munmap(s_ports[i].state, sizeof *s_ports[i].state);
    s_portCount = 0;
}

/* Under the lock. */
static void readList(void)
{
    const char *list = getenv(SIMSERIAL_VARIABLE);
    if (!list)
        list = "";
    if (strlen(list) >= sizeof s_list || strcmp(list, s_list) == 0)
        return;
    forgetPorts();
    strcpy(s_list, list);
    char copy[kMaxList];
    strcpy(copy, list);
    char *rest = NULL;
    for (char *item = strtok_r(copy, ":", &rest); item && s_portCount < kMaxPorts; item = strtok_r(NULL, ":", &rest)) {
        char *file = strchr(item, '=');
        if (!file || file - item >= kMaxName)
            continue;
        *file++ = '\0';
        struct Port *port = &s_ports[s_portCount];
        port->state = mapState(file);
        if (!port->state)
            continue;
        strcpy(port->name, item);
        s_portCount++;
    }
}

/* Under the lock. */
static struct SimSerialState *stateOf(int fd)
{
    struct stat info;
    if (s_portCount == 0 || fstat(fd, &info) != 0 || !S_ISCHR(info.st_mode))
        return NULL;
    for (int i = 0; i < s_portCount; i++) {
        if (s_ports[i].state->device == info.st_rdev)
            return s_ports[i].state;
    }
    return NULL;
}

/* ---- Modem lines --------------------------------------------------------------------------------------------- */

/* Under the lock; the test's process writes edges only while nobody has the port open. */
static void setOutputs(struct SimSerialState *state, uint32_t raise, uint32_t lower)
{
    const uint32_t before = __atomic_load_n(&state->outputs, __ATOMIC_SEQ_CST);
    const uint32_t after = (before & ~lower) | raise;
    if (after == before)
        return;
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    const uint32_t count = __atomic_load_n(&state->edgeCount, __ATOMIC_SEQ_CST);
    struct SimSerialEdge *edge = &state->edges[count % SIMSERIAL_EDGES];
    edge->nanoseconds = (uint64_t)now.tv_sec * 1000000000u + (uint64_t)now.tv_nsec;
    edge->outputs = after;
    edge->process = (uint32_t)getpid();
    __atomic_store_n(&state->outputs, after, __ATOMIC_SEQ_CST);
    __atomic_store_n(&state->edgeCount, count + 1, __ATOMIC_SEQ_CST);
}

static uint32_t readLines(struct SimSerialState *state)
{
    __atomic_fetch_add(&state->readCount, 1, __ATOMIC_SEQ_CST);
    uint32_t inputs = __atomic_load_n(&state->inputs, __ATOMIC_SEQ_CST);
    if (__atomic_load_n(&state->flippedReads, __ATOMIC_SEQ_CST) > 0) {
        __atomic_fetch_sub(&state->flippedReads, 1, __ATOMIC_SEQ_CST);
        inputs ^= __atomic_load_n(&state->flippedInputs, __ATOMIC_SEQ_CST);
    }
    return inputs | __atomic_load_n(&state->outputs, __ATOMIC_SEQ_CST);
}

static void modemRequest(struct SimSerialState *state, unsigned long request, uint32_t *lines)
{
    switch (request) {
    case TIOCMGET: *lines = readLines(state); break;
    case TIOCMSET: setOutputs(state, *lines & kOutputs, ~*lines & kOutputs); break;
    case TIOCMBIS: setOutputs(state, *lines & kOutputs, 0); break;
    case TIOCMBIC: setOutputs(state, 0, *lines & kOutputs); break;
    }
}

int ioctl(int fd, unsigned long request, ...)
{
    REAL(int, ioctl, int, unsigned long, ...);
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (request != TIOCMGET && request != TIOCMSET && request != TIOCMBIS && request != TIOCMBIC)
        return real(fd, request, argument);
    pthread_mutex_lock(&s_lock);
    readList(); /* another process may have opened it for this one */
    struct SimSerialState *state = stateOf(fd);
    if (state)
        modemRequest(state, request, argument);
    pthread_mutex_unlock(&s_lock);
    return state ? 0 : real(fd, request, argument);
}

/* ---- Opening and closing ------------------------------------------------------------------------------------- */

/* The terminal behind "/dev/NAME", in `target`; else the path itself. */
static const char *redirected(const char *path, char *target)
{
    static const char kDevices[] = "/dev/";
    if (!path || strncmp(path, kDevices, sizeof kDevices - 1) != 0)
        return path;
    pthread_mutex_lock(&s_lock);
    readList();
    for (int i = 0; i < s_portCount; i++) {
        if (strcmp(path + sizeof kDevices - 1, s_ports[i].name) == 0)
            path = strcpy(target, s_ports[i].state->terminal);
    }
    pthread_mutex_unlock(&s_lock);
    return path;
}

static int isRefused(const struct SimSerialState *state)
{
    return getenv(SIMSERIAL_EXCLUSIVE) && __atomic_load_n(&state->openCount, __ATOMIC_SEQ_CST) > 0;
}

static int opened(int fd)
{
    int error = errno;
    if (fd >= 0) {
        pthread_mutex_lock(&s_lock);
        struct SimSerialState *state = stateOf(fd);
        if (state && isRefused(state)) {
            realClose(fd);
            fd = -1;
            error = EACCES;
        } else if (state && fd < kMaxDescriptors) {
            s_isOpened[fd] = 1;
            __atomic_fetch_add(&state->openCount, 1, __ATOMIC_SEQ_CST);
            setOutputs(state, kOutputs, 0);
        }
        pthread_mutex_unlock(&s_lock);
    }
    errno = error;
    return fd;
}

#define DEFINE_OPEN(name)                                                                                              \
    int name(const char *path, int flags, ...)                                                                         \
    {                                                                                                                  \
        REAL(int, name, const char *, int, ...);                                                                       \
        mode_t mode = 0;                                                                                               \
        if (flags & (O_CREAT | __O_TMPFILE)) {                                                                         \
            va_list arguments;                                                                                         \
            va_start(arguments, flags);                                                                                \
            mode = va_arg(arguments, mode_t);                                                                          \
            va_end(arguments);                                                                                         \
        }                                                                                                              \
        char target[sizeof((struct SimSerialState *)NULL)->terminal];                                                  \
        return opened(real(redirected(path, target), flags, mode));                                                    \
    }
DEFINE_OPEN(open)
DEFINE_OPEN(open64)

int close(int fd)
{
    if (fd >= 0 && fd < kMaxDescriptors && s_isOpened[fd]) {
        const int error = errno;
        pthread_mutex_lock(&s_lock);
        s_isOpened[fd] = 0;
        struct SimSerialState *state = stateOf(fd);
        if (state && __atomic_load_n(&state->openCount, __ATOMIC_SEQ_CST) > 0 &&
            __atomic_sub_fetch(&state->openCount, 1, __ATOMIC_SEQ_CST) == 0)
            setOutputs(state, 0, kOutputs);
        pthread_mutex_unlock(&s_lock);
        errno = error;
    }
    return realClose(fd);
}

/* ---- libudev: the simulated ports, and only they --------------------------------------------------------------- */

struct udev;
struct udev_enumerate;
struct udev_list_entry;
struct udev_device;

/* Addresses that stand for entries, devices and their parents. */
static char s_entries[kMaxPorts], s_devices[kMaxPorts], s_parents[kMaxPorts];
static __thread struct udev_enumerate *s_terminals; /* an enumeration of terminals that goes on */
static const char kFolder[] = "/simserial/";

static int indexIn(const void *handle, const char *handles)
{
    const char *place = handle;
    return place >= handles && place < handles + kMaxPorts ? (int)(place - handles) : -1;
}

static void *handle(char *handles, int index)
{
    return index < s_portCount ? handles + index : NULL;
}

int udev_enumerate_add_match_subsystem(struct udev_enumerate *enumeration, const char *subsystem)
{
    REAL(int, udev_enumerate_add_match_subsystem, struct udev_enumerate *, const char *);
    pthread_mutex_lock(&s_lock);
    readList();
    pthread_mutex_unlock(&s_lock);
    if (subsystem && strcmp(subsystem, "tty") == 0)
        s_terminals = enumeration;
    return real(enumeration, subsystem);
}

struct udev_list_entry *udev_enumerate_get_list_entry(struct udev_enumerate *enumeration)
{
    REAL(struct udev_list_entry *, udev_enumerate_get_list_entry, struct udev_enumerate *);
    if (enumeration != s_terminals)
        return real(enumeration);
    s_terminals = NULL;
    return handle(s_entries, 0);
}

struct udev_list_entry *udev_list_entry_get_next(struct udev_list_entry *entry)
{
    REAL(struct udev_list_entry *, udev_list_entry_get_next, struct udev_list_entry *);
    const int index = indexIn(entry, s_entries);
    return index < 0 ? real(entry) : handle(s_entries, index + 1);
}

const char *udev_list_entry_get_name(struct udev_list_entry *entry)
{
    REAL(const char *, udev_list_entry_get_name, struct udev_list_entry *);
    const int index = indexIn(entry, s_entries);
    if (index < 0)
        return real(entry);
    static __thread char path[sizeof kFolder + 12];
    snprintf(path, sizeof path, "%s%d", kFolder, index);
    return path;
}

struct udev_device *udev_device_new_from_syspath(struct udev *udev, const char *path)
{
    REAL(struct udev_device *, udev_device_new_from_syspath, struct udev *, const char *);
    if (!path || strncmp(path, kFolder, sizeof kFolder - 1) != 0)
        return real(udev, path);
    return handle(s_devices, atoi(path + sizeof kFolder - 1));
}

struct udev_device *udev_device_get_parent(struct udev_device *device)
{
    REAL(struct udev_device *, udev_device_get_parent, struct udev_device *);
    const int index = indexIn(device, s_devices);
    return index < 0 ? real(device) : handle(s_parents, index);
}

const char *udev_device_get_driver(struct udev_device *device)
{
    REAL(const char *, udev_device_get_driver, struct udev_device *);
    return indexIn(device, s_parents) < 0 ? real(device) : "ftdi_sio";
}

const char *udev_device_get_sysname(struct udev_device *device)
{
    REAL(const char *, udev_device_get_sysname, struct udev_device *);
    const int index = indexIn(device, s_devices);
    return index < 0 ? real(device) : s_ports[index].name;
}

const char *udev_device_get_devnode(struct udev_device *device)
{
    REAL(const char *, udev_device_get_devnode, struct udev_device *);
    const int index = indexIn(device, s_devices);
    if (index < 0)
        return real(device);
    static __thread char path[kMaxName + 8];
    snprintf(path, sizeof path, "/dev/%s", s_ports[index].name);
    return path;
}

const char *udev_device_get_property_value(struct udev_device *device, const char *key)
{
    REAL(const char *, udev_device_get_property_value, struct udev_device *, const char *);
    const int index = indexIn(device, s_devices);
    if (index < 0)
        return real(device, key);
    if (strcmp(key, "ID_MODEL") == 0)
        return "Simulated serial port";
    if (strcmp(key, "ID_VENDOR") == 0)
        return "Test kit";
    if (strcmp(key, "ID_SERIAL_SHORT") == 0)
        return s_ports[index].name;
    return NULL;
}

struct udev_device *udev_device_unref(struct udev_device *device)
{
    REAL(struct udev_device *, udev_device_unref, struct udev_device *);
    return indexIn(device, s_devices) < 0 && indexIn(device, s_parents) < 0 ? real(device) : NULL;
}
