/* One request and the body of its response, read as it comes. */
#pragma once

#include "apps/velarto/sources/url.h"

#include <atomic>
#include <cstdint>
#include <span>
#include <string>

struct HttpTransfer;

/** Sends the request and waits for the header of a successful response; follows redirections and authenticates. Null, with
 * *error, when there is none, or when *stop becomes true. Otherwise the caller owns the transfer. */
HttpTransfer* Transfer_Open(const Url& url, const std::atomic<bool>* stop, std::string* error);

/** Waits for bytes of the body and stores some. Gives how many, 0 at the end or when stopped, and -1 with *error on a failure. */
int64_t Transfer_Read(HttpTransfer* transfer, std::span<uint8_t> buffer, std::string* error);

/** The Content-Type of the response; empty if there is none. */
std::string Transfer_Type(const HttpTransfer& transfer);

/** The server announced a length, and so many bytes have been read. */
bool Transfer_Whole(const HttpTransfer& transfer);

/** Null is allowed. */
void Transfer_Close(HttpTransfer* transfer);
