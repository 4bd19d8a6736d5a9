#ifndef LUMO_LUMO_H
#define LUMO_LUMO_H

// Every public header of the library.
#include <lumo/Library.h>
#include <lumo/base/Atomic.h>
#include <lumo/base/Base.h>
#include <lumo/base/Class.h>
#include <lumo/base/ClassManager.h>
#include <lumo/base/ClassNotFoundException.h>
#include <lumo/base/Exception.h>
#include <lumo/base/Object.h>
#include <lumo/base/String.h>
#include <lumo/base/win/WinSystemErrorException.h>
#include <lumo/io/IOException.h>
#include <lumo/io/UnsupportedEncodingException.h>
#include <lumo/net/SocketException.h>
#include <lumo/net/UnknownHostException.h>
#include <lumo/util/HashCode.h>
#include <lumo/util/NoSuchElementException.h>

#endif
