// What the tests of plans and applies share: documents in text, and a module that they are applied to in this process.
#ifndef PLAN_FIXTURE_H
#define PLAN_FIXTURE_H

#include "apply.h"
#include "area_fixture.h"
#include "checks.h"
#include "document.h"
#include "module.h"
#include "plan.h"
#include "tree.h"

namespace ctl {

using Lines = std::vector<std::string>;

class PlanTest : public AreaTest {
protected:
    static Value document(const std::string& text)
    {
        Problems problems;
        Value value = check_document(read_document("version: 1\n" + text, &problems), &problems);
        EXPECT_EQ(problem_lines("document", problems), "") << text;
        return value;
    }
    static std::string document_problems(const std::string& text)
    {
        Problems problems;
        check_document(read_document("version: 1\n" + text, &problems), &problems);
        return problem_lines("", problems);
    }

    static Plan planned(const Value& document, Reach reach = Reach::kMerge)
    {
        return make_plan(document, read_for(document, reach), reach);
    }
    static Lines lines_of(const Plan& plan)
    {
        Lines lines;
        for (const Problem& problem : plan.problems)
            lines.push_back("problem: " + problem.path + ": " + problem.text);
        for (const Step& step : plan.steps)
            lines.insert(lines.end(), step.lines.begin(), step.lines.end());
        return lines;
    }
    static Lines plan_of(const std::string& text, Reach reach = Reach::kMerge)
    {
        return lines_of(planned(document(text), reach));
    }
    // Whom it interrupts, and what cannot be taken back.
    static Lines said_of(const std::string& text, Reach reach = Reach::kMerge)
    {
        Lines said;
        for (const Step& step : planned(document(text), reach).steps) {
            if (!step.interrupts.empty()) said.push_back(step.interrupts);
            if (!step.not_undone.empty()) said.push_back("not undone: " + step.not_undone);
        }
        return said;
    }

    static Outcome apply(const Value& document, Reach reach = Reach::kMerge, const Progress& progress = {},
                         bool keep_going = false)
    {
        const Module module = read_for(document, reach);
        const Plan plan = make_plan(document, module, reach);
        if (!plan.problems.empty()) return {2, lines_of(plan)};
        const ApplyOptions options = {reach, true, keep_going};
        return carry_out(plan, document, held_for(plan, module), options, progress);
    }
    // Applies it; what it has changed, as it was.
    static Value held_by(const std::string& text, Reach reach = Reach::kMerge, const Value& earlier = {})
    {
        const Value wanted = document(text);
        const Module module = read_for(wanted, reach);
        const Value held = held_for(make_plan(wanted, module, reach), module, earlier);
        applied(text, reach);
        return held;
    }
    static void applied(const std::string& text, Reach reach = Reach::kMerge)
    {
        const Outcome outcome = apply(document(text), reach);
        EXPECT_EQ(outcome.status, 0) << text;
        EXPECT_EQ(outcome.left, Lines()) << text;
    }

    static Module read_all()
    {
        Module module = read_lists();
        read_settings({}, &module);
        return module;
    }
    static std::string shown()
    {
        return as_yaml(as_document(read_all(), {}, false));
    }
};

}  // namespace ctl

#endif
