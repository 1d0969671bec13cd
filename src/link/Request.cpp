#include "link/Request.h"

std::string framed(const Request& request)
{
    std::string text = "[ST]" + request.head;
    if (request.name != rawRequestName)
        text.append("_VB6_").append(request.tail);
    return text += "[ND]";
}

Request loginRequest(std::string_view user, std::string_view password, std::string_view version)
{
    std::string head = "login_";
    head.append(user).append("_").append(password).append("_").append(version);
    return {"Login", std::move(head), {}};
}

Request getStatusRequest(std::string_view user)
{
    return {"GetStatus", "GetStatus_" + std::string(user), {}};
}

Request rawRequest(std::string text)
{
    return {std::string(rawRequestName), std::move(text), {}};
}
