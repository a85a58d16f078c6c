// The render jobs of one texture request, and the render thread for as long as it takes.
#pragma once

#include "framework/render/RenderJob.h"
#include "framework/render/RenderThread.h"

#include <boost/core/noncopyable.hpp>

#include <deque>
#include <memory>

namespace SubstanceAir {
class GraphInstance;
}

namespace kvSubstance {

// A queue owns the render thread from its creation to its end. Queues of other threads wait for their turn.
class RenderQueue : private boost::noncopyable {
public:
    RenderQueue(); // waits for its turn; throws boost::thread_resource_error when there is no thread to be
                   // had

    // Stops and joins the thread. Outputs of jobs that were never run are out of date again.
    ~RenderQueue();

    // Queues a job for what is out of date in the graph, if anything is.
    void push(SubstanceAir::GraphInstance& graph);

    // Once: hands all jobs to the renderer and blocks until it is done. The jobs stay when there is no
    // renderer any more, because the process is exiting.
    void run();

private:
    bool handOver(); // false when there is no renderer

    const SubstanceAir::RenderTurn turn;
    std::deque<std::unique_ptr<SubstanceAir::RenderJob>> jobs; // in the order of their pushes
};

} // namespace kvSubstance
