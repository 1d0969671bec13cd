/*
 * The interface between the client and its plugins where the system has no components of its own.
 *
 * A plugin is a shared library with the ending ".dll" that exports the four functions at the end of this file. It needs
 * nothing but this file, and no library of the client. C++ authors find qrvrc_plugin.hpp more convenient.
 *
 * - Everything is called on the client's window thread, and must return promptly.
 * - Functions return 0 for success, otherwise a run-time error number (QRVRC_ERROR_..., or one of the plugin's own).
 * - No exception may leave a function of a plugin.
 * - No memory changes hands: values belong to the client and are read and written through QrvrcHost only; objects
 * belong to the plugin and are let go of through their release function.
 * - Strings are bytes in the host's code page (see QrvrcHost.code_page), with their size; they may hold NUL bytes.
 * - A library stays loaded, and its QrvrcHost valid, to the end of the run.
 */
#ifndef QRVRC_PLUGIN_H
#define QRVRC_PLUGIN_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Changes whenever a library that was built before could no longer be called. */
#define QRVRC_ABI_VERSION 1

#if defined(_WIN32)
#define QRVRC_EXPORT __declspec(dllexport)
#else
#define QRVRC_EXPORT __attribute__((visibility("default")))
#endif

/* Embeds the four-part file version of the library, for example QRVRC_FILE_VERSION("1.0.0.0"). The client reads it from
   the file without loading it. Once a library, outside of all functions. */
#define QRVRC_FILE_VERSION(version)                                                                                    \
    extern QRVRC_EXPORT const char qrvrc_file_version[];                                                               \
    const char qrvrc_file_version[] = "QRVRC-FILE-VERSION:" version

/* The numbers that the client itself tells apart. */
enum {
    QRVRC_ERROR_INVALID_CALL = 5,
    QRVRC_ERROR_OUT_OF_MEMORY = 7,
    QRVRC_ERROR_SUBSCRIPT_OUT_OF_RANGE = 9,
    QRVRC_ERROR_TYPE_MISMATCH = 13,
    QRVRC_ERROR_INTERNAL = 51,
    QRVRC_ERROR_CANNOT_CREATE = 429,
    QRVRC_ERROR_MEMBER_NOT_SUPPORTED = 438
};

enum { QRVRC_EMPTY = 0, QRVRC_BOOLEAN = 1, QRVRC_INT32 = 2, QRVRC_STRING = 3, QRVRC_LIST = 4, QRVRC_OBJECT = 5 };

/* A value, owned by the client: an argument or a result of a call, or an element of a list. Valid during that call. */
typedef struct QrvrcValue QrvrcValue;

/* What the client offers. Filled by the client, read only. */
typedef struct QrvrcHost QrvrcHost;

/* An instance of a plugin's class: its first member is the table of its functions, the rest is the plugin's own. */
typedef struct QrvrcObject QrvrcObject;

struct QrvrcHost
{
    size_t size;         /* bytes of this structure; later clients may add functions at its end */
    int32_t abi_version; /* QRVRC_ABI_VERSION of the client */

    /* The folder that holds all of the client's state, as a path of the file system; without a separator at its end. */
    const char* (*application_folder)(const QrvrcHost* host);
    /* The name of the code page of all strings, for example "windows-1252": what the user chose for the host. It stands
       where it is to the end of the run, and what stands there changes when the user chooses another. */
    const char* (*code_page)(const QrvrcHost* host);
    /* Enters a class of this library under its programmatic identifier, such as "qrvrcSample.clsPlugin". Only inside
       DllRegisterServer. */
    int32_t (*register_class)(const QrvrcHost* host, const char* progId);
    /* Says what went wrong, in words. Goes with the error number that the function under way then returns. */
    void (*set_error)(const QrvrcHost* host, const char* description, size_t size);

    /* QRVRC_EMPTY ... QRVRC_OBJECT */
    int32_t (*type_of)(const QrvrcValue* value);
    /* The readers change `*out` on success only and return QRVRC_ERROR_TYPE_MISMATCH for what does not convert.
       Numbers, Booleans (-1 and 0) and texts of digits convert into one another; empty is false, 0, "" and the empty
       list. */
    int32_t (*get_boolean)(const QrvrcValue* value, int32_t* out);
    int32_t (*get_int32)(const QrvrcValue* value, int32_t* out);
    /* Strings only, nothing converts. The bytes stay where they are until the value changes or the call is over; they
       are followed by a NUL byte, which does not count. */
    int32_t (*get_string)(const QrvrcValue* value, const char** data, size_t* size);
    int32_t (*list_size)(const QrvrcValue* value, size_t* out);
    /* The element, to be read or changed in place, or NULL when there is none. Valid until the list's size changes. */
    QrvrcValue* (*list_at)(const QrvrcValue* value, size_t index);

    int32_t (*set_boolean)(QrvrcValue* value, int32_t boolean);
    int32_t (*set_int32)(QrvrcValue* value, int32_t number);
    int32_t (*set_string)(QrvrcValue* value, const char* data, size_t size);
    /* The client calls the object's release function, also when this fails. */
    int32_t (*set_object)(const QrvrcHost* host, QrvrcValue* value, QrvrcObject* object);
    /* A new empty element at the end, or NULL when the value is something else than a list or empty. */
    QrvrcValue* (*list_append)(QrvrcValue* value);
    /* Makes it a list without elements. A list that was handed over stays the same one for the caller. */
    int32_t (*list_clear)(QrvrcValue* value);

    /* From here on only as far as `size` reaches. */

    /* The characters that the 256 byte values have in that code page, as UTF-16 units. Read them when they are needed:
       they change with the code page. */
    const uint16_t* (*characters)(const QrvrcHost* host);
};

typedef struct QrvrcObjectFunctions
{
    size_t size; /* bytes of this structure */
    /* Calls a method or reads a property. Names count without regard to the case of letters.
       QRVRC_ERROR_MEMBER_NOT_SUPPORTED for an unknown one. `result` is empty and may stay so. */
    int32_t (*call)(QrvrcObject* self, const char* member, QrvrcValue* const* arguments, int32_t count,
                    QrvrcValue* result);
    /* The last call to the object. */
    void (*release)(QrvrcObject* self);
} QrvrcObjectFunctions;

struct QrvrcObject
{
    const QrvrcObjectFunctions* functions;
};

#if !defined(_WIN32) /* where a plugin is a component of the system, it exports what the system asks for */

/* What a plugin exports. */

/* Called first, and nothing else when it is not QRVRC_ABI_VERSION. */
QRVRC_EXPORT int32_t qrvrc_abi_version(void);
/* Called before every call into the library; the last table counts. */
QRVRC_EXPORT void qrvrc_attach_host(const QrvrcHost* host);
/* Enters every class of the library through register_class. */
QRVRC_EXPORT int32_t DllRegisterServer(void);
/* Makes an instance. */
QRVRC_EXPORT int32_t qrvrc_create_object(const char* progId, QrvrcObject** object);

#endif

#ifdef __cplusplus
}
#endif

#endif
