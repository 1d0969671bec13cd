#include "plugins/AwaitComponent.h"

#include "link/EventWait.h"

#include <QObject>
#include <QPointer>

namespace {

class Answer : public QObject
{
    Q_OBJECT

public:
    std::optional<ComponentFault> fault; ///< nothing before it is there

Q_SIGNALS:
    void arrived();
};

} // namespace

ComponentFault awaitComponent(const std::function<void(Components::Done)>& begin)
{
    Answer answer;
    begin([waiting = QPointer(&answer)](const ComponentFault& fault) {
        if (!waiting)
            return; // the program quits
        waiting->fault = fault;
        Q_EMIT waiting->arrived();
    });
    if (!answer.fault)
        static_cast<void>(EventWait().endsOn(&answer, &Answer::arrived, WaitEnd::Done).run());
    return answer.fault.value_or("it was broken off");
}

#include "AwaitComponent.moc"
