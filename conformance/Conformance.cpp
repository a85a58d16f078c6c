#include "conformance/Conformance.h"

#include "conformance/Clauses.h"
#include "conformance/Findings.h"

#include <stdexcept>

namespace kvSubstance::conformance {

namespace {

const std::vector<Entry>& entries() {
    static const std::vector<Entry> all = [] {
        std::vector<Entry> joined;
        for (const auto& part : {refusalClauses(), deliveryClauses(), linkClauses(), stackClauses(),
                                 runClauses(), valueClauses(), textureClauses()})
            joined.insert(joined.end(), part.begin(), part.end());
        return joined;
    }();
    return all;
}

} // namespace

const std::vector<Clause>& clauses() {
    static const std::vector<Clause> all = [] {
        std::vector<Clause> list;
        list.reserve(entries().size());
        for (const Entry& entry : entries()) list.push_back(entry.clause);
        return list;
    }();
    return all;
}

Verdict judge(const std::string& clauseName, const Interface& judged, const Packages& packages) {
    for (const Entry& entry : entries()) {
        if (clauseName != entry.clause.name) continue;
        try {
            Trial trial(judged, packages);
            entry.judge(trial);
            return {};
        } catch (const Broken& broken) {
            return {Judgement::Broken, broken.observed};
        } catch (const NotJudged& reason) {
            return {Judgement::NotJudged, reason.reason};
        } catch (const std::out_of_range&) { // of a list of ports
            return {Judgement::NotJudged, "a package has no output"};
        }
    }
    return {Judgement::NotJudged, "there is no clause of that name"};
}

} // namespace kvSubstance::conformance
