#pragma once

#include "export/export.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace meshcast::exporter {

/// Encodes bytes in base64 (RFC 4648) and writes them to another sink. The output is split into
/// pieces that can be decoded one by one, with a text before and after each piece.
class Base64Sink final : public ByteSink {
public:
    /// `pieceSize` counts bytes before encoding and has to be a multiple of 3.
    Base64Sink(ByteSink& to, std::size_t pieceSize, std::string_view before, std::string_view after)
        : to_(to), pieceSize_(pieceSize), before_(before), after_(after) {}

    void write(std::string_view bytes) override;
    /// Writes what is still pending.
    void finish();

private:
    ByteSink& to_;
    std::size_t pieceSize_;
    std::string_view before_, after_;
    std::string pending_;
};

/// Encodes bytes in base64.
std::string base64(std::string_view bytes);

} // namespace meshcast::exporter
