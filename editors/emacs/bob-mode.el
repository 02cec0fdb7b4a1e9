;;; bob-mode.el --- Scripts of pages, and page sources -*- lexical-binding: t -*-

;; Version: 1.0
;; Package-Requires: ((emacs "27.1"))

;;; Commentary:

;; A mode for scripts in Bob.  With Eglot (in Emacs 29, before that a package) both scripts and page sources have a
;; language server, kpg lsp:
;;
;;     (add-to-list 'load-path "/usr/local/share/vistrel/editors/emacs")
;;     (require 'bob-mode)
;;     (add-hook 'bob-mode-hook #'eglot-ensure)
;;     (add-hook 'yaml-mode-hook #'eglot-ensure)

;;; Code:

(defgroup bob nil
  "Scripts of pages."
  :group 'languages)

(defcustom bob-kpg-program "kpg"
  "The program kpg, by its name or its path."
  :type 'string)

(defcustom bob-indent-offset 2
  "Columns of one level, as kpg format writes them."
  :type 'integer
  :safe #'integerp)

(defvar bob-mode-syntax-table
  (let ((table (make-syntax-table)))
    (modify-syntax-entry ?_ "w" table)
    (modify-syntax-entry ?/ ". 124b" table)
    (modify-syntax-entry ?* ". 23" table)
    (modify-syntax-entry ?\n "> b" table)
    (modify-syntax-entry ?\" "\"" table)
    (modify-syntax-entry ?\' "\"" table)
    (modify-syntax-entry ?\\ "\\" table)
    (dolist (operator '(?+ ?- ?% ?& ?| ?^ ?< ?> ?= ?! ?~ ??))
      (modify-syntax-entry operator "." table))
    table))

(defconst bob-keywords
  '("if" "else" "switch" "case" "default" "while" "do" "for" "break" "continue" "return" "try" "catch" "finally"
    "throw" "define" "function" "local" "new"))

(defvar bob-font-lock-keywords
  `(("\\_<define\\s-+\\(?:[[:alpha:]_]\\w*\\s-*\\.\\s-*\\)*\\([[:alpha:]_]\\w*\\)" 1 font-lock-function-name-face)
    (,(regexp-opt bob-keywords 'symbols) . font-lock-keyword-face)
    (,(regexp-opt '("nil" "true" "false") 'symbols) . font-lock-constant-face)
    (,(regexp-opt '("this" "super" "_next" "widgets" "textStyles" "frame" "parent" "topFrame" "KOVA") 'symbols)
     . font-lock-builtin-face)
    ("\\\\\\([[:alpha:]_]\\w*\\)" . font-lock-constant-face)
    ("\\_<local\\s-+\\([[:alpha:]_]\\w*\\)" 1 font-lock-variable-name-face)))

;; A backslash begins a symbol or a literal; it escapes in strings alone.
(defconst bob-syntax-propertize
  (syntax-propertize-rules
   ("\\(\\\\\\)[[:alpha:]_[{]"
    (1 (unless (nth 3 (save-excursion (syntax-ppss (match-beginning 0)))) (string-to-syntax "."))))))

(defun bob-indent-line ()
  "Indent the line by the brackets around it."
  (interactive)
  (let ((offset (- (current-column) (current-indentation)))
        (column
         (save-excursion
           (back-to-indentation)
           (let ((around (nth 1 (syntax-ppss)))
                 (closes (looking-at-p "[]})]")))
             (if (not around)
                 0
               (goto-char around)
               (+ (current-indentation) (if closes 0 bob-indent-offset)))))))
    (indent-line-to column)
    (when (> offset 0) (forward-char offset))))

;;;###autoload
(define-derived-mode bob-mode prog-mode "Bob"
  "A mode for scripts of pages."
  (setq-local font-lock-defaults '(bob-font-lock-keywords))
  (setq-local syntax-propertize-function bob-syntax-propertize)
  (setq-local comment-start "// ")
  (setq-local comment-start-skip "//+\\s-*\\|/\\*+\\s-*")
  (setq-local comment-end "")
  (setq-local indent-tabs-mode nil)
  (setq-local indent-line-function #'bob-indent-line)
  (setq-local imenu-generic-expression
              '((nil "^\\s-*define\\s-+\\([[:alpha:]_][[:alnum:]_.]*\\)" 1))))

;;;###autoload
(add-to-list 'auto-mode-alist '("\\.bob\\'" . bob-mode))

(defvar eglot-server-programs)
(with-eval-after-load 'eglot
  (add-to-list 'eglot-server-programs
               '((bob-mode yaml-mode yaml-ts-mode) . (lambda (&rest _) (list bob-kpg-program "lsp")))))

(provide 'bob-mode)
;;; bob-mode.el ends here
