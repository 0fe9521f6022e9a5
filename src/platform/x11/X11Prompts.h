#pragma once

#include <QDialog>
#include <QPointer>

#include "platform/Images.h"
#include "platform/Prompts.h"

namespace nevo {

/// Prompts as ordinary dialogs that leave the rest of the program usable.
class X11Prompts : public Prompts {
public:
    explicit X11Prompts(const Images& pictures) : images(pictures) {}
    std::unique_ptr<Prompt> create(PromptContent content) override;

private:
    const Images& images;
};

class X11ChildProcesses : public ChildProcesses {
public:
    bool launch(const std::string& executable, const std::vector<std::string>& arguments) override;
};

}  // namespace nevo
