#ifndef ZORWB_REALWALK_H
#define ZORWB_REALWALK_H

#include "expressions/ZorWBFactory.h"

// A running real-number evaluation, from the object's making to its end
// (see ZorWBEvaluation.cpp). Used inside the library.
class ZorWBFactory::RealWalk {
  public:
    explicit RealWalk(ZorWBFactory& factory)
        : _factory(factory),
          _outerBase(factory._realBase),
          _outerCrossing(factory._realCrossing),
          _savedMarks(factory._savedMarks.size()) {
        factory._realBase = factory._realSlots.size();
        factory._realCrossing = factory._valueWalk != 0;
    }
    ~RealWalk() {
        _factory.RestoreMarks(_savedMarks);
        _factory._realSlots.resize(_factory._realBase);
        _factory._realBase = _outerBase;
        _factory._realCrossing = _outerCrossing;
    }
    RealWalk(const RealWalk&) = delete;
    RealWalk& operator=(const RealWalk&) = delete;

  private:
    ZorWBFactory& _factory;
    std::size_t _outerBase;
    bool _outerCrossing;
    std::size_t _savedMarks;
};

#endif
