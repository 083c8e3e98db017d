#include "platform/KeyedCoder.hpp"
#include "plugins/ContractProbe/ContractProbe.hpp"

// What the probe archives is chosen to be mixed up easily.

namespace vigil {
namespace {

const Date kDate(725803200.125);

ValueList sampleList() {
    return {Value(1),   Value(1.0),   Value(true),
            Value("1"), Value(kDate), Value(ValueList{Value("b"), Value("a")})};
}

}  // namespace

void ContractProbe::encodeWithCoder(KeyedEncoder& coder) const {
    QRVPlugIn::encodeWithCoder(coder);
    const auto sample = std::make_shared<ProbeSample>();
    coder.encode("list", Value(sampleList()));
    coder.encodeObject("sample", sample);
    coder.encodeObject("sampleAgain", sample);
    coder.encodeObject("other", std::make_shared<ProbeSample>());
    coder.encodeText("nothing", std::nullopt);
    coder.encodeText("empty", "");
    coder.encodeObject("station", agent());
}

bool ContractProbe::initWithCoder(KeyedDecoder& coder) {
    if (!QRVPlugIn::initWithCoder(coder)) return false;
    noteMade();
    noteArchive(coder);
    return true;
}

void ContractProbe::noteArchive(KeyedDecoder& coder) {
    m_promises->note(HostPromise::ArchiveKeepsKinds, coder.decode("list") == Value(sampleList()));
    const auto sample = coder.decodeObject<ProbeSample>("sample");
    m_promises->note(HostPromise::ArchiveKeepsSharing,
                     sample && sample == coder.decodeObject<ProbeSample>("sampleAgain") &&
                         sample != coder.decodeObject<ProbeSample>("other"));
    m_promises->note(
        HostPromise::ArchiveKeepsAbsence,
        !coder.contains("nothing") && coder.decodeText("empty") == std::optional<std::string>(""));
    m_promises->note(HostPromise::ArchiveKeepsStation,
                     coder.decodeObject<QRVAgentPlugIn>("station") == agent());
}

}  // namespace vigil
