#ifndef EVOX_SIMSERIAL_H
#define EVOX_SIMSERIAL_H

/* What a simulated serial port's test and the program that opens it share: one file, mapped by both. Fields are read
   and written atomically, except what the test fills in before it lists the port. */

#include <stdint.h>

#define SIMSERIAL_MAGIC 0x324d4953u /* "SIM2" */
#define SIMSERIAL_EDGES 1024
/* NAME=STATEFILE[:NAME=STATEFILE…], read at every open and every enumeration. */
#define SIMSERIAL_VARIABLE "SIMSERIAL"
/* Set: a port that is open is refused to everybody else, as Windows does. */
#define SIMSERIAL_EXCLUSIVE "SIMSERIAL_EXCLUSIVE"

/* The lines, with the numbers of Linux's TIOCM_ constants. */
enum {
    SIMSERIAL_DTR = 0x002,
    SIMSERIAL_RTS = 0x004,
    SIMSERIAL_CTS = 0x020,
    SIMSERIAL_DCD = 0x040,
    SIMSERIAL_DSR = 0x100
};

struct SimSerialEdge
{
    uint64_t nanoseconds; /* CLOCK_MONOTONIC */
    uint32_t outputs;     /* SIMSERIAL_RTS | SIMSERIAL_DTR after the edge */
    uint32_t process;     /* who made it; 0: the system, at the last close */
};

struct SimSerialState
{
    uint32_t magic;
    uint32_t inputs;        /* SIMSERIAL_CTS | SIMSERIAL_DCD | SIMSERIAL_DSR, set by the test */
    uint32_t outputs;       /* SIMSERIAL_RTS | SIMSERIAL_DTR, set by the program */
    uint32_t edgeCount;     /* edges so far; the ring keeps the last SIMSERIAL_EDGES */
    uint32_t readCount;     /* times the program read the lines */
    uint32_t openCount;     /* descriptors open now */
    uint32_t flippedInputs; /* lines that read inverted … */
    uint32_t flippedReads;  /* … for this many reads to come */
    uint64_t device;        /* st_rdev of the terminal; 0: the adapter was pulled */
    char terminal[64];
    struct SimSerialEdge edges[SIMSERIAL_EDGES];
};

#endif
