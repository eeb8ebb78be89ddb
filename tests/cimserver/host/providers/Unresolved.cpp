#include "cimserver/host/providers/Plain.hpp"

extern "C" void NobodyDefinesThis();

namespace {

class Unresolved : public Plain {
public:
    void initialize(const Env&) override { NobodyDefinesThis(); }
};

} // namespace

OW_PROVIDERFACTORY(Unresolved, Unresolved)
