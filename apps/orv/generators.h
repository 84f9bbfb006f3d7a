// The basic generators by name, and streams as the command makes them.
#pragma once

#include <memory>
#include <orv/random.h>
#include <string>
#include <vector>

namespace orv::command {

struct DeleteStream {
    void operator()(Stream* stream) const { __kuzDeleteStream(&stream); }
};
using StreamHandle = std::unique_ptr<Stream, DeleteStream>;

// Ends the command with what the status means, if it is negative.
void require(int32_t status, const std::string& what);

// "NAME", or "NAME:MEMBER" for a member of a family; letters of either case match.
StreamHandle make_stream(const std::string& name, const std::vector<uint32_t>& seed);

// From a file that was saved before. A stream whose state holds pointers is refused: it works in its own process alone.
StreamHandle load_stream(const std::string& file);

// The registry row of a stream.
const BrngProperties& generator_of(const Stream* stream);

}  // namespace orv::command
